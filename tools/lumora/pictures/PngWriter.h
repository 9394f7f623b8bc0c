#pragma once

#include "lumora/pictures/UnfinishedFile.h"
#include "platform/ComPtr.h"

#include <windows.h>

#include <wincodec.h>

#include <cstdint>
#include <span>
#include <string>

namespace Lumora {

/// A PNG file that is written from the top row to the last. It gets its name, and replaces a file of that
/// name, only when it is complete. Whatever fails throws a Failure.
class PngWriter
{
public:
    /// Begins a file for pixels of that format.
    PngWriter(IWICImagingFactory& factory, const std::wstring& path, uint32_t width, uint32_t height,
              const WICPixelFormatGUID& format);

    /// Adds a picture of the file's width.
    void Write(IWICBitmapSource& picture);

    /// Adds rows from memory, each `stride` bytes after the one before.
    void WriteRows(uint32_t rows, uint32_t stride, std::span<uint8_t> pixels);

    void Finish();

private:
    // This member is destroyed last, so that the file is closed before it is renamed or deleted.
    const UnfinishedFile file;
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapEncoder> encoder;
    ComPtr<IWICBitmapFrameEncode> frame;
    const WICPixelFormatGUID sourceFormat;
    /// The format that the encoder takes instead.
    WICPixelFormatGUID encodedFormat;
};

/// Writes the picture as a PNG file. Throws a Failure.
void WritePng(IWICImagingFactory& factory, IWICBitmapSource& picture, const std::wstring& path);

} // namespace Lumora
