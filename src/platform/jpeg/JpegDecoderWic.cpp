#include "platform/ComPtr.h"
#include "platform/jpeg/JpegDecoder.h"

#include <windows.h>

#include <shlwapi.h>
#include <wincodec.h>

std::optional<JpegPicture> DecodeJpeg(std::span<const uint8_t> file, uint32_t longestSide)
{
    ComPtr<IStream> stream;
    *stream.Put() = SHCreateMemStream(file.data(), static_cast<UINT>(file.size()));
    ComPtr<IWICImagingFactory> factory;
    if (!stream || FAILED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                           IID_IWICImagingFactory, factory.PutVoid())))
        return std::nullopt;

    ComPtr<IWICBitmapDecoder> decoder;
    ComPtr<IWICBitmapFrameDecode> frame;
    UINT frameCount = 0;
    JpegPicture picture;
    if (FAILED(factory->CreateDecoderFromStream(stream.Get(), nullptr, WICDecodeMetadataCacheOnDemand,
                                                decoder.Put())) ||
        FAILED(decoder->GetFrameCount(&frameCount)) || FAILED(decoder->GetFrame(0, frame.Put())) ||
        FAILED(frame->GetSize(&picture.width, &picture.height)) || picture.width > longestSide ||
        picture.height > longestSide)
        return std::nullopt;
    picture.frameCount = frameCount;

    WICPixelFormatGUID format;
    ComPtr<IWICFormatConverter> converter;
    if (FAILED(frame->GetPixelFormat(&format)) || FAILED(factory->CreateFormatConverter(converter.Put())) ||
        FAILED(converter->Initialize(frame.Get(), GUID_WICPixelFormat24bppRGB, WICBitmapDitherTypeNone,
                                     nullptr, 0, WICBitmapPaletteTypeCustom)))
        return std::nullopt;
    const UINT stride = picture.width * 3;
    picture.pixels.resize(size_t{stride} * picture.height);
    if (FAILED(converter->CopyPixels(nullptr, stride, static_cast<UINT>(picture.pixels.size()),
                                     picture.pixels.data())))
        return std::nullopt;
    return picture;
}
