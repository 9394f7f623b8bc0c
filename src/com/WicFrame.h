#pragma once

#include "com/ComObjectBase.h"
#include "core/RawImage.h"
#include "core/display/DisplayPicture.h"

#include <wincodec.h>

#include <memory>

/// One decoded frame as WIC sees it. Nothing changes after construction, so any thread may call it.
class WicFrame final : public ComObjectBase<IWICBitmapFrameDecode>
{
public:
    /// Takes over the holder and its reader's display picture, which the reader then lacks. Without a reader
    /// or a picture the frame is empty. Throws when memory is exhausted.
    explicit WicFrame(std::unique_ptr<Tav::Imaging::RawImage::RawImage> holder);

    /// The reader that the frame was made from, for its facts, or null.
    [[nodiscard]] const Tav::Imaging::RawImage::RawImageBase* Reader() const noexcept;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override;

    HRESULT STDMETHODCALLTYPE GetSize(UINT* widthOut, UINT* heightOut) override;
    HRESULT STDMETHODCALLTYPE GetPixelFormat(WICPixelFormatGUID* formatOut) override;
    HRESULT STDMETHODCALLTYPE GetResolution(double* dpiX, double* dpiY) override;
    HRESULT STDMETHODCALLTYPE CopyPalette(IWICPalette* palette) override;
    HRESULT STDMETHODCALLTYPE CopyPixels(const WICRect* rect, UINT stride, UINT bufferSize,
                                         BYTE* buffer) override;

    HRESULT STDMETHODCALLTYPE GetMetadataQueryReader(IWICMetadataQueryReader** reader) override;
    HRESULT STDMETHODCALLTYPE GetColorContexts(UINT count, IWICColorContext** contexts,
                                               UINT* actualCount) override;
    HRESULT STDMETHODCALLTYPE GetThumbnail(IWICBitmapSource** thumbnail) override;

private:
    std::unique_ptr<Tav::Imaging::RawImage::RawImage> image;
    Tav::Imaging::RawImage::DisplayPicture picture;
};
