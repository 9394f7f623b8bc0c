#include "com/WicBitmapDecoder.h"

#include "core/RawImage.h"
#include "registration/ClassIds.h"

#include <memory>
#include <mutex>
#include <new>
#include <utility>

using Tav::Imaging::RawImage::RawImage;
using Tav::Imaging::RawImage::RawImageBase;
using Tav::Imaging::RawImage::readModeFrame;

HRESULT WicBitmapDecoder::QueryInterface(REFIID riid, void** ppv)
{
    if (!ppv)
        return E_INVALIDARG;
    *ppv = nullptr;
    if (riid != IID_IUnknown && riid != IID_IWICBitmapDecoder)
        return E_NOINTERFACE;
    AddRef();
    *ppv = static_cast<IWICBitmapDecoder*>(this);
    return S_OK;
}

HRESULT WicBitmapDecoder::QueryCapability(IStream* candidate, DWORD* capability)
{
    if (!candidate || !capability)
        return E_INVALIDARG;
    *capability = WICBitmapDecoderCapabilityCanDecodeSomeImages;
    return S_OK;
}

HRESULT WicBitmapDecoder::Initialize(IStream* source, WICDecodeOptions)
{
    if (!source)
        return E_INVALIDARG;
    const std::lock_guard guard{lock};
    stream = ComPtr<IStream>::Share(source);
    frameIndex = 0;
    // A second stream is refused, but kept: all frames except the current one are then read from it.
    if (frame)
        return WINCODEC_ERR_WRONGSTATE;

    ComPtr<WicFrame> created;
    if (FAILED(CreateFrame(source, created, 0)))
        return WINCODEC_ERR_WRONGSTATE;
    frame = std::move(created);
    const RawImageBase* const reader = frame->Reader();
    frameCount = reader ? reader->frameCount : 1;
    return S_OK;
}

HRESULT WicBitmapDecoder::GetContainerFormat(GUID* guid)
{
    if (!guid)
        return E_INVALIDARG;
    *guid = GUID_ContainerFormatLumora;
    return S_OK;
}

HRESULT WicBitmapDecoder::GetDecoderInfo(IWICBitmapDecoderInfo** info)
{
    ComPtr<IWICImagingFactory> shared;
    if (const HRESULT result = ShareFactory(shared); FAILED(result))
        return result;
    ComPtr<IWICComponentInfo> component;
    if (const HRESULT result = shared->CreateComponentInfo(CLSID_LumoraDecoder, component.Put());
        FAILED(result))
        return result;
    const HRESULT result =
        component->QueryInterface(IID_IWICBitmapDecoderInfo, reinterpret_cast<void**>(info));
    return SUCCEEDED(result) ? S_OK : result;
}

HRESULT WicBitmapDecoder::CopyPalette(IWICPalette*)
{
    return WINCODEC_ERR_PALETTEUNAVAILABLE;
}

HRESULT WicBitmapDecoder::GetMetadataQueryReader(IWICMetadataQueryReader**)
{
    return WINCODEC_ERR_UNSUPPORTEDOPERATION;
}

HRESULT WicBitmapDecoder::GetPreview(IWICBitmapSource**)
{
    return WINCODEC_ERR_UNSUPPORTEDOPERATION;
}

HRESULT WicBitmapDecoder::GetColorContexts(UINT, IWICColorContext**, UINT*)
{
    return WINCODEC_ERR_UNSUPPORTEDOPERATION;
}

HRESULT WicBitmapDecoder::GetThumbnail(IWICBitmapSource**)
{
    return WINCODEC_ERR_CODECNOTHUMBNAIL;
}

HRESULT WicBitmapDecoder::GetFrameCount(UINT* count)
{
    if (!count)
        return E_INVALIDARG;
    *count = frameCount;
    return S_OK;
}

HRESULT WicBitmapDecoder::GetFrame(UINT index, IWICBitmapFrameDecode** frameOut)
{
    if (!frameOut)
        return E_INVALIDARG;
    const std::lock_guard guard{lock};
    if (index >= frameCount)
        return WINCODEC_ERR_FRAMEMISSING;
    if (index != frameIndex)
    {
        // The owner of the stream may call back during the read and give the decoder another stream.
        const ComPtr<IStream> source = stream;
        ComPtr<WicFrame> created;
        if (FAILED(CreateFrame(source.Get(), created, index)))
            return WINCODEC_ERR_WRONGSTATE;
        frame = std::move(created);
        frameIndex = index;
    }
    if (!frame)
        return WINCODEC_ERR_FRAMEMISSING;
    *frameOut = ComPtr<WicFrame>(frame).Detach();
    return S_OK;
}

HRESULT WicBitmapDecoder::CreateFrame(IStream* source, ComPtr<WicFrame>& created, uint32_t index)
{
    if (!source)
        return E_INVALIDARG;
    auto holder = std::make_unique<RawImage>();
    if (!holder->Open(source, readModeFrame, index))
        return E_FAIL;

    created = ComPtr<WicFrame>::Adopt(new (std::nothrow) WicFrame(std::move(holder)));
    return created ? S_OK : E_OUTOFMEMORY;
}

HRESULT WicBitmapDecoder::ShareFactory(ComPtr<IWICImagingFactory>& shared)
{
    const std::lock_guard guard{lock};
    if (!factory)
    {
        const HRESULT result = CoCreateInstance(CLSID_WICImagingFactory2, nullptr, CLSCTX_INPROC_SERVER,
                                                IID_IWICImagingFactory, factory.PutVoid());
        if (FAILED(result))
            return result;
    }
    shared = factory;
    return S_OK;
}
