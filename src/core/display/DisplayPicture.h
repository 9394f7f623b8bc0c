#pragma once

#include "core/PixelType.h"
#include "core/RawImageBase.h"
#include "core/samples/FrameBytes.h"

#include <cstdint>

namespace Tav::Imaging::RawImage {

/// A picture as programs show it: rows top-down without padding.
struct DisplayPicture
{
    /// In pixels. If one is 0, there are no pixels.
    uint32_t width = 0;
    uint32_t height = 0;
    /// UInt8 for a gray picture, RGB24 for a colour picture.
    PixelType format = PixelType::UInt8;
    FrameBytes pixels;
};

/// Takes the display picture of the frame that was read, which the reader then lacks. Pixels that the reader
/// has not made are black. Throws std::bad_alloc.
[[nodiscard]] DisplayPicture TakeDisplayPicture(RawImageBase& reader);

} // namespace Tav::Imaging::RawImage
