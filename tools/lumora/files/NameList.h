#pragma once

#include "lumora/files/ByteFile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace Lumora {

/// A list of names, in a file or from another program, that is read as far as it is needed. It is UTF-8, or
/// UTF-16 with a byte-order mark, as PowerShell writes it. A name that is not valid UTF-8 is taken for one in
/// the encoding of the system (TextOfName).
class NameList
{
public:
    /// What ends a name.
    enum class Separator : char
    {
        Line = '\n',
        Nul = '\0',
    };

    /// Opens the file of that name; "-" is the standard input. Throws a Failure.
    NameList(const std::wstring& name, Separator nameSeparator);

    /// The next name that is not empty. Nothing at the end. Throws a Failure when the list cannot be read, or
    /// holds a name that is longer than any path.
    [[nodiscard]] std::optional<std::wstring> Next();

private:
    /// Reads bytes into the buffer from that place on, and returns their number.
    [[nodiscard]] size_t ReadInto(std::span<uint8_t> place);
    [[nodiscard]] std::optional<char> NextByte();
    void DetectEncoding();
    /// The bytes up to the next separator, without it. Nothing at the end.
    [[nodiscard]] std::optional<std::string> NextBytes();

    std::wstring file;
    Separator separator;
    ByteFile opened;
    bool isEncodingKnown = false;
    bool isWide = false;
    std::array<uint8_t, 65'536> buffer = {};
    size_t position = 0;
    size_t end = 0;
};

} // namespace Lumora
