#include "windows/clients/DecoderClient.h"

#include "registration/ClassIds.h"
#include "windows/clients/LumoraModule.h"

#include <gtest/gtest.h>

ComPtr<IWICBitmapDecoder> NewDecoder()
{
    return LumoraModule::Shared().Create<IWICBitmapDecoder>(CLSID_LumoraDecoder, IID_IWICBitmapDecoder);
}

ComPtr<IWICBitmapDecoder> NewDecoder(IStream& stream)
{
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    EXPECT_EQ(Initialize(decoder, stream), S_OK);
    return decoder;
}

HRESULT Initialize(const ComPtr<IWICBitmapDecoder>& decoder, IStream& stream)
{
    return decoder->Initialize(&stream, WICDecodeMetadataCacheOnDemand);
}

UINT FrameCount(const ComPtr<IWICBitmapDecoder>& decoder)
{
    UINT count = 0;
    EXPECT_EQ(decoder->GetFrameCount(&count), S_OK);
    return count;
}

ComPtr<IWICBitmapFrameDecode> Frame(const ComPtr<IWICBitmapDecoder>& decoder, UINT index)
{
    ComPtr<IWICBitmapFrameDecode> frame;
    EXPECT_EQ(decoder->GetFrame(index, frame.Put()), S_OK);
    return frame;
}

HRESULT FrameRefusal(const ComPtr<IWICBitmapDecoder>& decoder, UINT index)
{
    IWICBitmapFrameDecode* frame = Untouchable<IWICBitmapFrameDecode>();
    const HRESULT result = decoder->GetFrame(index, &frame);
    EXPECT_EQ(frame, Untouchable<IWICBitmapFrameDecode>());
    return result;
}

std::vector<uint8_t> Picture(const ComPtr<IWICBitmapFrameDecode>& frame)
{
    UINT width = 0;
    UINT height = 0;
    WICPixelFormatGUID format{};
    if (!frame || frame->GetSize(&width, &height) != S_OK || frame->GetPixelFormat(&format) != S_OK)
    {
        ADD_FAILURE() << "There is no frame that tells its size and format";
        return {};
    }
    const UINT rowBytes = width * (format == GUID_WICPixelFormat24bppRGB ? 3 : 1);
    std::vector<uint8_t> pixels(size_t{rowBytes} * height);
    EXPECT_EQ(frame->CopyPixels(nullptr, rowBytes, static_cast<UINT>(pixels.size()), pixels.data()), S_OK);
    return pixels;
}

uint32_t Calls(const TestStream& stream)
{
    return stream.statCalls + stream.seekCalls + stream.readCalls;
}
