#pragma once

#include "platform/ComPtr.h"

#include <wincodec.h>

#include <cstdint>
#include <optional>
#include <string>

namespace Lumora {

/// A file that WIC has opened with Lumora's decoder. Whatever fails throws a Failure.
class PictureFile
{
public:
    /// Opens the file. Also fails if WIC opens it with another codec.
    PictureFile(IWICImagingFactory& factory, const std::wstring& path);

    [[nodiscard]] uint32_t FrameCount() const;

    /// One frame, scaled down where its longer side is more than that many pixels.
    [[nodiscard]] ComPtr<IWICBitmapSource> Frame(uint32_t index, std::optional<uint32_t> longerSide) const;

private:
    IWICImagingFactory& factory;
    ComPtr<IWICBitmapDecoder> decoder;
};

} // namespace Lumora
