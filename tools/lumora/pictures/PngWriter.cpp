#include "lumora/pictures/PngWriter.h"

#include "lumora/console/Failure.h"

namespace Lumora {

PngWriter::PngWriter(IWICImagingFactory& factory, const std::wstring& path, uint32_t width, uint32_t height,
                     const WICPixelFormatGUID& format)
    : file(path), sourceFormat(format), encodedFormat(format)
{
    Require(factory.CreateStream(stream.Put()), L"cannot make a stream");
    Require(stream->InitializeFromFilename(file.path.c_str(), GENERIC_WRITE), L"cannot write the picture");
    Require(factory.CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.Put()),
            L"cannot start WIC's PNG encoder");
    Require(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache), L"cannot write the picture");
    Require(encoder->CreateNewFrame(frame.Put(), nullptr), L"cannot write the picture");
    Require(frame->Initialize(nullptr), L"cannot write the picture");
    Require(frame->SetSize(width, height), L"cannot write the picture");
    Require(frame->SetPixelFormat(&encodedFormat), L"cannot write the picture");
}

void PngWriter::Write(IWICBitmapSource& picture)
{
    // PNG encoders differ in the colour formats that they take directly.
    ComPtr<IWICBitmapSource> encodable = ComPtr<IWICBitmapSource>::Share(&picture);
    if (encodedFormat != sourceFormat)
        Require(WICConvertBitmapSource(encodedFormat, &picture, encodable.Put()),
                L"cannot convert the picture");
    Require(frame->WriteSource(encodable.Get(), nullptr), L"cannot write the picture");
}

void PngWriter::WriteRows(uint32_t rows, uint32_t stride, std::span<uint8_t> pixels)
{
    if (encodedFormat != sourceFormat)
        throw Failure{L"WIC's PNG encoder does not take pixels of this format"};
    Require(frame->WritePixels(rows, stride, static_cast<UINT>(pixels.size()), pixels.data()),
            L"cannot write the picture");
}

void PngWriter::Finish()
{
    Require(frame->Commit(), L"cannot finish the picture");
    Require(encoder->Commit(), L"cannot finish the picture");
    frame.Reset();
    encoder.Reset();
    stream.Reset();
    file.Keep();
}

void WritePng(IWICImagingFactory& factory, IWICBitmapSource& picture, const std::wstring& path)
{
    UINT width = 0;
    UINT height = 0;
    WICPixelFormatGUID format = {};
    Require(picture.GetSize(&width, &height), L"cannot ask for the picture's size");
    Require(picture.GetPixelFormat(&format), L"cannot ask for the picture's pixel format");
    PngWriter writer(factory, path, width, height, format);
    writer.Write(picture);
    writer.Finish();
}

} // namespace Lumora
