#pragma once

#include "com/ComObjectBase.h"
#include "com/CriticalSection.h"
#include "com/WicFrame.h"
#include "platform/ComPtr.h"

#include <wincodec.h>

#include <atomic>
#include <cstdint>

/// Decodes one stream for WIC. Frame 0 is decoded when the stream is given; the last frame that was asked
/// for is kept.
class WicBitmapDecoder final : public ComObjectBase<IWICBitmapDecoder>
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override;

    HRESULT STDMETHODCALLTYPE QueryCapability(IStream* candidate, DWORD* capability) override;
    HRESULT STDMETHODCALLTYPE Initialize(IStream* source, WICDecodeOptions cacheOptions) override;
    HRESULT STDMETHODCALLTYPE GetContainerFormat(GUID* guid) override;
    HRESULT STDMETHODCALLTYPE GetDecoderInfo(IWICBitmapDecoderInfo** info) override;
    HRESULT STDMETHODCALLTYPE CopyPalette(IWICPalette* palette) override;
    HRESULT STDMETHODCALLTYPE GetMetadataQueryReader(IWICMetadataQueryReader** reader) override;
    HRESULT STDMETHODCALLTYPE GetPreview(IWICBitmapSource** preview) override;
    HRESULT STDMETHODCALLTYPE GetColorContexts(UINT count, IWICColorContext** contexts,
                                               UINT* actualCount) override;
    HRESULT STDMETHODCALLTYPE GetThumbnail(IWICBitmapSource** thumbnail) override;
    HRESULT STDMETHODCALLTYPE GetFrameCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetFrame(UINT index, IWICBitmapFrameDecode** frameOut) override;

private:
    /// Decodes one frame.
    static HRESULT CreateFrame(IStream* source, ComPtr<WicFrame>& created, uint32_t index);

    [[nodiscard]] HRESULT ShareFactory(ComPtr<IWICImagingFactory>& shared);

    ComPtr<IWICImagingFactory> factory;
    ComPtr<WicFrame> frame;
    ComPtr<IStream> stream;
    /// Guards every field, and with `stream` its seek pointer.
    CriticalSection lock;
    /// Read without the lock.
    std::atomic<uint32_t> frameCount{1};
    /// Index of the frame in `frame`.
    uint32_t frameIndex = 0;
};
