#include "lumora/pictures/PictureWriter.h"

#include "lumora/console/Failure.h"

namespace Lumora {

PictureWriter::PictureWriter(IWICImagingFactory& factory, const std::wstring& path, PictureFormat format,
                             uint32_t width, uint32_t height, const WICPixelFormatGUID& pixelFormat)
    : file(path, format.Signature()), sourceFormat(pixelFormat), encodedFormat(pixelFormat)
{
    Require(factory.CreateStream(stream.Put()), L"cannot make a stream");
    Require(stream->InitializeFromFilename(file.path.c_str(), GENERIC_WRITE), L"cannot write the picture");
    Require(factory.CreateEncoder(format.isJpeg ? GUID_ContainerFormatJpeg : GUID_ContainerFormatPng, nullptr,
                                  encoder.Put()),
            L"cannot start WIC's encoder");
    Require(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache), L"cannot write the picture");
    ComPtr<IPropertyBag2> options;
    Require(encoder->CreateNewFrame(frame.Put(), options.Put()), L"cannot write the picture");
    if (format.isJpeg)
        SetQuality(*options.Get(), format.quality);
    Require(frame->Initialize(options.Get()), L"cannot write the picture");
    Require(frame->SetSize(width, height), L"cannot write the picture");
    Require(frame->SetPixelFormat(&encodedFormat), L"cannot write the picture");
}

void PictureWriter::SetQuality(IPropertyBag2& options, uint32_t quality)
{
    std::wstring name = L"ImageQuality";
    PROPBAG2 option = {};
    option.pstrName = name.data();
    VARIANT value = {};
    value.vt = VT_R4;
    value.fltVal = static_cast<float>(quality) / 100;
    Require(options.Write(1, &option, &value), L"cannot set the quality of the picture");
}

void PictureWriter::Write(IWICBitmapSource& picture)
{
    // Encoders differ in the colour formats that they take directly.
    ComPtr<IWICBitmapSource> encodable = ComPtr<IWICBitmapSource>::Share(&picture);
    if (encodedFormat != sourceFormat)
        Require(WICConvertBitmapSource(encodedFormat, &picture, encodable.Put()),
                L"cannot convert the picture");
    Require(frame->WriteSource(encodable.Get(), nullptr), L"cannot write the picture");
}

void PictureWriter::WriteRows(uint32_t rows, uint32_t stride, std::span<uint8_t> pixels)
{
    if (encodedFormat != sourceFormat)
        throw Failure{L"WIC's encoder does not take pixels of this format"};
    Require(frame->WritePixels(rows, stride, static_cast<UINT>(pixels.size()), pixels.data()),
            L"cannot write the picture");
}

void PictureWriter::Finish()
{
    Require(frame->Commit(), L"cannot finish the picture");
    Require(encoder->Commit(), L"cannot finish the picture");
    frame.Reset();
    encoder.Reset();
    stream.Reset();
    file.Keep();
}

PictureSize WritePicture(IWICImagingFactory& factory, IWICBitmapSource& picture, const std::wstring& path,
                         PictureFormat format)
{
    UINT width = 0;
    UINT height = 0;
    WICPixelFormatGUID pixelFormat = {};
    Require(picture.GetSize(&width, &height), L"cannot ask for the picture's size");
    Require(picture.GetPixelFormat(&pixelFormat), L"cannot ask for the picture's pixel format");
    PictureWriter writer(factory, path, format, width, height, pixelFormat);
    writer.Write(picture);
    writer.Finish();
    return {width, height};
}

PictureSize SizeOfPicture(IWICImagingFactory& factory, const std::wstring& path)
{
    ComPtr<IWICBitmapDecoder> decoder;
    Require(factory.CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                              WICDecodeMetadataCacheOnDemand, decoder.Put()),
            L"cannot open the picture that is there");
    ComPtr<IWICBitmapFrameDecode> frame;
    Require(decoder->GetFrame(0, frame.Put()), L"cannot open the picture that is there");
    UINT width = 0;
    UINT height = 0;
    Require(frame->GetSize(&width, &height), L"cannot ask for the picture's size");
    return {width, height};
}

} // namespace Lumora
