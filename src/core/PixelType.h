#pragma once

#include <cstdint>
#include <string>

namespace Tav::Imaging::RawImage {

/// How one sample of a frame is stored. The values are published as metadata and never change.
enum class PixelType : uint32_t
{
    Unknown = 0,
    UInt4 = 1,
    UInt8 = 2,
    UInt16 = 3,
    UInt32 = 4,
    Int8 = 5,
    Int16 = 6,
    Int32 = 7,
    Float16 = 8,
    Float32 = 9,
    Double64 = 10,
    Complex64 = 11,
    Complex128 = 12,
    RGB24 = 13,
    RGBA32 = 14,
};

/// The type's display name, such as "UInt16"; "<unknown>" for a value that names no pixel type.
[[nodiscard]] std::wstring PixelTypeName(PixelType type);

/// Size of one stored sample in bits (4 for UInt4); 0 for a value that names no pixel type.
[[nodiscard]] uint32_t BitsPerPixel(PixelType type) noexcept;

/// Size of one unpacked sample in bytes; 0 for a value that names no pixel type.
/// UInt4 counts one byte: it is stored two to a byte in files and unpacked on the way to the display.
[[nodiscard]] uint32_t BytesPerPixel(PixelType type) noexcept;

} // namespace Tav::Imaging::RawImage
