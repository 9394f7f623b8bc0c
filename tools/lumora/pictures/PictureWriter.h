#pragma once

#include "lumora/pictures/PictureFormat.h"
#include "lumora/pictures/UnfinishedFile.h"
#include "platform/ComPtr.h"

#include <windows.h>

#include <wincodec.h>

#include <cstdint>
#include <span>
#include <string>

namespace Lumora {

/// The size of a picture in pixels.
struct PictureSize
{
    uint32_t width = 0;
    uint32_t height = 0;
};

/// A picture file that is written from the top row to the last. It gets its name, and replaces a picture of
/// that name, only when it is complete. Whatever fails throws a Failure.
class PictureWriter
{
public:
    /// Begins a file for pixels of that pixel format.
    PictureWriter(IWICImagingFactory& factory, const std::wstring& path, PictureFormat format, uint32_t width,
                  uint32_t height, const WICPixelFormatGUID& pixelFormat);

    /// Adds a picture of the file's width.
    void Write(IWICBitmapSource& picture);

    /// Adds rows from memory, each `stride` bytes after the one before.
    void WriteRows(uint32_t rows, uint32_t stride, std::span<uint8_t> pixels);

    void Finish();

private:
    void SetQuality(IPropertyBag2& options, uint32_t quality);

    // This member is destroyed last, so that the file is closed before it is renamed or deleted.
    const UnfinishedFile file;
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapEncoder> encoder;
    ComPtr<IWICBitmapFrameEncode> frame;
    const WICPixelFormatGUID sourceFormat;
    /// The format that the encoder takes instead.
    WICPixelFormatGUID encodedFormat;
};

/// Writes the picture to a file, and returns its size. Throws a Failure.
PictureSize WritePicture(IWICImagingFactory& factory, IWICBitmapSource& picture, const std::wstring& path,
                         PictureFormat format);

/// The size of a picture in a file of any format that WIC knows. Throws a Failure.
[[nodiscard]] PictureSize SizeOfPicture(IWICImagingFactory& factory, const std::wstring& path);

} // namespace Lumora
