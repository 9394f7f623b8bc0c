#pragma once

#include "formats/HeaderPattern.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Lumora {

/// A file name extension under which a format's files are met.
struct Extension
{
    const wchar_t* text;
    /// Whether files of other kinds commonly bear it too. Then the shell may ask us about such a file, but
    /// nothing is said about all files of that name.
    bool isShared;
};

/// Some bits of one header byte: the bits outside of the mask are free.
struct ByteChoice
{
    uint8_t value;
    uint8_t bits;
};

/// One way in which a format's header begins: fixed bytes and, where there are choices, one byte that is any
/// of them.
struct Signature
{
    HeaderPattern fixed;
    size_t choiceOffset = 0;
    std::span<const ByteChoice> choices = {};
};

/// What Windows is told about one file format.
struct Format
{
    const wchar_t* mimeType;
    std::span<const Extension> extensions;
    std::span<const Signature> signatures;
};

/// The formats that have a reader.
[[nodiscard]] std::span<const Format> Formats() noexcept;

/// All signatures, one pattern for each choice.
[[nodiscard]] std::vector<HeaderPattern> HeaderPatterns();

} // namespace Lumora
