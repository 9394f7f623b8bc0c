#include "windows/gauntlet/Passage.h"

#include "platform/ComPtr.h"
#include "registration/ClassIds.h"

#include <windows.h>

#include <propsys.h>
#include <shlwapi.h>
#include <wincodec.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

// Of a long series, as many frames as a person turns over, and the last one.
constexpr UINT mostFrames = 8;
constexpr size_t mostPixelBytes = size_t{1} << 30;

std::string Result(const char* what, HRESULT result)
{
    char text[64];
    std::snprintf(text, sizeof(text), "%s 0x%08lX", what, static_cast<unsigned long>(result));
    return text;
}

ComPtr<IStream> OpenStream(const std::filesystem::path& file)
{
    ComPtr<IStream> stream;
    SHCreateStreamOnFileEx(file.c_str(), STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr, stream.Put());
    return stream;
}

/// The decoder that is registered for the file's content.
HRESULT OpenPicture(IStream* stream, ComPtr<IWICBitmapDecoder>& decoder)
{
    ComPtr<IWICImagingFactory> factory;
    const HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                            IID_IWICImagingFactory, factory.PutVoid());
    if (FAILED(result))
        return result;
    return factory->CreateDecoderFromStream(stream, nullptr, WICDecodeMetadataCacheOnLoad, decoder.Put());
}

HRESULT CopyAll(IWICBitmapFrameDecode* frame)
{
    UINT width = 0;
    UINT height = 0;
    HRESULT result = frame->GetSize(&width, &height);
    if (FAILED(result))
        return result;
    // As many bytes for each pixel as any format of Lumora's has.
    const size_t stride = size_t{3} * width;
    if (stride * height > mostPixelBytes)
        return WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
    std::vector<uint8_t> pixels(stride * height);
    return frame->CopyPixels(nullptr, static_cast<UINT>(stride), static_cast<UINT>(pixels.size()),
                             pixels.data());
}

std::string ThroughWic(const std::filesystem::path& file)
{
    const ComPtr<IStream> stream = OpenStream(file);
    ComPtr<IWICBitmapDecoder> decoder;
    const HRESULT opened = OpenPicture(stream.Get(), decoder);
    if (FAILED(opened))
        return Result("no picture", opened);
    UINT count = 0;
    decoder->GetFrameCount(&count);
    for (UINT index = 0; index < count; ++index)
    {
        if (index == mostFrames)
            index = count - 1;
        ComPtr<IWICBitmapFrameDecode> frame;
        HRESULT result = decoder->GetFrame(index, frame.Put());
        if (SUCCEEDED(result))
            result = CopyAll(frame.Get());
        if (FAILED(result))
            return std::to_string(count) + " frames; " + Result("no pixels", result);
    }
    return std::to_string(count) + " frames";
}

std::string ThroughPropertyHandler(const std::filesystem::path& file)
{
    ComPtr<IInitializeWithStream> handler;
    HRESULT result = CoCreateInstance(CLSID_LumoraPropertyHandler, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_IInitializeWithStream, handler.PutVoid());
    if (SUCCEEDED(result))
        result = handler->Initialize(OpenStream(file).Get(), STGM_READ);
    ComPtr<IPropertyStore> store;
    if (SUCCEEDED(result))
        result = handler->QueryInterface(IID_IPropertyStore, store.PutVoid());
    DWORD count = 0;
    if (SUCCEEDED(result))
        result = store->GetCount(&count);
    if (FAILED(result))
        return Result("no properties", result);
    for (DWORD index = 0; index < count; ++index)
    {
        PROPERTYKEY key{};
        PROPVARIANT value{};
        if (SUCCEEDED(store->GetAt(index, &key)) && SUCCEEDED(store->GetValue(key, &value)))
            PropVariantClear(&value);
    }
    return std::to_string(count) + " properties";
}

} // namespace

std::string TakeThroughLumora(const std::filesystem::path& file)
{
    return ThroughWic(file) + ", " + ThroughPropertyHandler(file);
}
