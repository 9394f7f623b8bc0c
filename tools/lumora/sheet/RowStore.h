#pragma once

#include "lumora/files/ByteFile.h"

#include <cstdint>
#include <span>
#include <string>

namespace Lumora {

/// Rows of pixels in a temporary file, because the number of rows must be known before the first one of a
/// picture is written. The file vanishes with the object, or with the program. Whatever fails throws a
/// Failure.
class RowStore
{
public:
    /// Makes a file beside the one with this path.
    explicit RowStore(const std::wstring& neighbour);

    void Append(std::span<const uint8_t> rows);

    /// Begins again at the first row: to read what was appended, or to replace it.
    void Rewind();

    /// Reads the next bytes.
    void Read(std::span<uint8_t> rows);

private:
    ByteFile file;
};

} // namespace Lumora
