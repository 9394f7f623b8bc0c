#pragma once

#include "lumora/console/Failure.h"
#include "lumora/pictures/PixelBlock.h"
#include "platform/ComPtr.h"

#include <wincodec.h>

#include <cstdint>
#include <optional>
#include <string>

namespace Lumora {

/// Room for a picture, in pixels.
struct Box
{
    uint32_t width = 0;
    uint32_t height = 0;
};

/// A file that WIC has opened with Lumora's decoder. Whatever fails throws a Failure.
class PictureFile
{
public:
    /// Opens the file. Also fails if WIC opens it with another codec.
    PictureFile(IWICImagingFactory& factory, const std::wstring& path);

    [[nodiscard]] uint32_t FrameCount() const;

    /// One frame, scaled down where it is larger than the box.
    [[nodiscard]] ComPtr<IWICBitmapSource> Frame(uint32_t index, std::optional<Box> box) const;

private:
    IWICImagingFactory& factory;
    ComPtr<IWICBitmapDecoder> decoder;
};

/// None of the frames that are wanted is in the file, which has so many.
[[nodiscard]] Failure NoFrames(uint32_t frameCount);

/// A copy of the picture in memory. Throws a Failure.
[[nodiscard]] PixelBlock CopyOf(IWICBitmapSource& picture);

} // namespace Lumora
