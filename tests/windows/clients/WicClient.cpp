#include "windows/clients/WicClient.h"

#include <gtest/gtest.h>

IWICImagingFactory& Wic()
{
    // Kept until the process ends, as hosts do.
    static IWICImagingFactory* const factory = [] {
        ComPtr<IWICImagingFactory> created;
        EXPECT_EQ(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IWICImagingFactory, created.PutVoid()),
                  S_OK);
        return created.Detach();
    }();
    return *factory;
}

ComPtr<IStream> StreamOver(std::span<const uint8_t> content)
{
    ComPtr<IWICStream> stream;
    EXPECT_EQ(Wic().CreateStream(stream.Put()), S_OK);
    EXPECT_EQ(
        stream->InitializeFromMemory(const_cast<BYTE*>(content.data()), static_cast<DWORD>(content.size())),
        S_OK);
    return ComPtr<IStream>::Adopt(stream.Detach());
}

ComPtr<IWICBitmapDecoder> Discover(std::span<const uint8_t> content)
{
    ComPtr<IWICBitmapDecoder> decoder;
    EXPECT_EQ(Wic().CreateDecoderFromStream(StreamOver(content).Get(), nullptr,
                                            WICDecodeMetadataCacheOnDemand, decoder.Put()),
              S_OK);
    return decoder;
}

HRESULT DiscoveryResult(std::span<const uint8_t> content)
{
    ComPtr<IWICBitmapDecoder> decoder;
    return Wic().CreateDecoderFromStream(StreamOver(content).Get(), nullptr, WICDecodeMetadataCacheOnDemand,
                                         decoder.Put());
}

GUID FormatOf(const ComPtr<IWICBitmapDecoder>& decoder)
{
    GUID format{};
    EXPECT_TRUE(decoder && decoder->GetContainerFormat(&format) == S_OK);
    return format;
}

ComPtr<IWICBitmapSource> Converted(IWICBitmapSource* source, REFGUID format)
{
    ComPtr<IWICFormatConverter> converter;
    EXPECT_EQ(Wic().CreateFormatConverter(converter.Put()), S_OK);
    EXPECT_EQ(converter->Initialize(source, format, WICBitmapDitherTypeNone, nullptr, 0.0,
                                    WICBitmapPaletteTypeCustom),
              S_OK);
    return ComPtr<IWICBitmapSource>::Adopt(converter.Detach());
}

ComPtr<IWICBitmapSource> Scaled(IWICBitmapSource* source, UINT width, UINT height)
{
    ComPtr<IWICBitmapScaler> scaler;
    EXPECT_EQ(Wic().CreateBitmapScaler(scaler.Put()), S_OK);
    EXPECT_EQ(scaler->Initialize(source, width, height, WICBitmapInterpolationModeFant), S_OK);
    return ComPtr<IWICBitmapSource>::Adopt(scaler.Detach());
}

std::vector<uint8_t> PixelsOf(IWICBitmapSource* source, UINT bytesPerPixel)
{
    UINT width = 0;
    UINT height = 0;
    EXPECT_EQ(source->GetSize(&width, &height), S_OK);
    std::vector<uint8_t> pixels(size_t{width} * height * bytesPerPixel);
    EXPECT_EQ(
        source->CopyPixels(nullptr, width * bytesPerPixel, static_cast<UINT>(pixels.size()), pixels.data()),
        S_OK);
    return pixels;
}

std::vector<uint8_t> Encoded(IWICBitmapSource* source, REFGUID container)
{
    ComPtr<IStream> stream;
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()), S_OK);
    ComPtr<IWICBitmapEncoder> encoder;
    EXPECT_EQ(Wic().CreateEncoder(container, nullptr, encoder.Put()), S_OK);
    EXPECT_EQ(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache), S_OK);
    ComPtr<IWICBitmapFrameEncode> frame;
    EXPECT_EQ(encoder->CreateNewFrame(frame.Put(), nullptr), S_OK);
    EXPECT_EQ(frame->Initialize(nullptr), S_OK);
    EXPECT_EQ(frame->WriteSource(source, nullptr), S_OK);
    EXPECT_EQ(frame->Commit(), S_OK);
    EXPECT_EQ(encoder->Commit(), S_OK);

    STATSTG statistics{};
    EXPECT_EQ(stream->Stat(&statistics, STATFLAG_NONAME), S_OK);
    std::vector<uint8_t> content(statistics.cbSize.QuadPart);
    EXPECT_EQ(stream->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
    ULONG read = 0;
    EXPECT_EQ(stream->Read(content.data(), static_cast<ULONG>(content.size()), &read), S_OK);
    EXPECT_EQ(read, content.size());
    return content;
}
