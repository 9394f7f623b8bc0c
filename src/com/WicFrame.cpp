#include "com/WicFrame.h"

#include "core/display/CopyArea.h"

#include <optional>

using Tav::Imaging::RawImage::CopyArea;
using Tav::Imaging::RawImage::CopyResult;
using Tav::Imaging::RawImage::PictureArea;
using Tav::Imaging::RawImage::PixelType;
using Tav::Imaging::RawImage::RawImageBase;
using Tav::Imaging::RawImage::TakeDisplayPicture;

WicFrame::WicFrame(std::unique_ptr<Tav::Imaging::RawImage::RawImage> holder) : image(std::move(holder))
{
    if (RawImageBase* const reader = image ? image->Reader() : nullptr)
        picture = TakeDisplayPicture(*reader);
}

const RawImageBase* WicFrame::Reader() const noexcept
{
    return image ? image->Reader() : nullptr;
}

HRESULT WicFrame::QueryInterface(REFIID riid, void** ppv)
{
    if (!ppv)
        return E_INVALIDARG;
    *ppv = nullptr;
    if (riid != IID_IUnknown && riid != IID_IWICBitmapSource && riid != IID_IWICBitmapFrameDecode)
        return E_NOINTERFACE;
    AddRef();
    *ppv = static_cast<IWICBitmapFrameDecode*>(this);
    return S_OK;
}

HRESULT WicFrame::GetSize(UINT* widthOut, UINT* heightOut)
{
    if (!widthOut || !heightOut)
        return E_INVALIDARG;
    *widthOut = picture.width;
    *heightOut = picture.height;
    return S_OK;
}

HRESULT WicFrame::GetPixelFormat(WICPixelFormatGUID* formatOut)
{
    if (!formatOut)
        return E_INVALIDARG;
    *formatOut =
        picture.format == PixelType::RGB24 ? GUID_WICPixelFormat24bppRGB : GUID_WICPixelFormat8bppGray;
    return S_OK;
}

HRESULT WicFrame::GetResolution(double* dpiX, double* dpiY)
{
    if (!dpiX || !dpiY)
        return E_INVALIDARG;
    *dpiX = 96.0;
    *dpiY = 96.0;
    return S_OK;
}

HRESULT WicFrame::CopyPalette(IWICPalette*)
{
    return WINCODEC_ERR_PALETTEUNAVAILABLE;
}

HRESULT WicFrame::CopyPixels(const WICRect* rect, UINT stride, UINT bufferSize, BYTE* buffer)
{
    std::optional<PictureArea> area;
    if (rect)
        area = PictureArea{rect->X, rect->Y, rect->Width, rect->Height};
    switch (CopyArea(picture, area, {buffer, stride, bufferSize}))
    {
    case CopyResult::Copied:
        return S_OK;
    case CopyResult::BufferTooSmall:
        return WINCODEC_ERR_INSUFFICIENTBUFFER;
    case CopyResult::InvalidArgument:
        break;
    }
    return E_INVALIDARG;
}

HRESULT WicFrame::GetMetadataQueryReader(IWICMetadataQueryReader**)
{
    return WINCODEC_ERR_UNSUPPORTEDOPERATION;
}

HRESULT WicFrame::GetColorContexts(UINT, IWICColorContext**, UINT*)
{
    return WINCODEC_ERR_UNSUPPORTEDOPERATION;
}

HRESULT WicFrame::GetThumbnail(IWICBitmapSource**)
{
    return WINCODEC_ERR_CODECNOTHUMBNAIL;
}
