#pragma once

#include "core/RawImageBase.h"

namespace Tav::Imaging::RawImage {

/// Whether samples of this type are shown as little-endian, whatever the byte order of their file.
[[nodiscard]] constexpr bool IsAlwaysLittleEndian(PixelType type) noexcept
{
    return type == PixelType::UInt32 || type == PixelType::Int32 || type == PixelType::Double64 ||
           type == PixelType::Complex64 || type == PixelType::Complex128;
}

/// Builds the image's display picture from the bytes of its frame, packed and in the stream's byte order. The
/// frame must hold the bytes that the image's size and pixel type require, of one pixel at least. It becomes
/// the picture.
void ConvertFrame(RawImageBase& image, FrameBytes frame);

} // namespace Tav::Imaging::RawImage
