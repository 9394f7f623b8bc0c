#include "com/WicFrame.h"

#include "core/display/DisplayPicture.h"

#include <algorithm>
#include <utility>

using Tav::Imaging::RawImage::BytesPerPixel;
using Tav::Imaging::RawImage::DisplayPicture;
using Tav::Imaging::RawImage::PixelType;
using Tav::Imaging::RawImage::RawImageBase;
using Tav::Imaging::RawImage::TakeDisplayPicture;

WicFrame::WicFrame(std::unique_ptr<Tav::Imaging::RawImage::RawImage> holder) : image(std::move(holder))
{
    RawImageBase* const reader = image ? image->Reader() : nullptr;
    if (!reader)
        return;
    DisplayPicture picture = TakeDisplayPicture(*reader);
    width = picture.width;
    height = picture.height;
    format = picture.format;
    pixels = std::move(picture.pixels);
}

uint32_t WicFrame::BytesPerPicturePixel() const noexcept
{
    return BytesPerPixel(format);
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
    *widthOut = width;
    *heightOut = height;
    return S_OK;
}

HRESULT WicFrame::GetPixelFormat(WICPixelFormatGUID* formatOut)
{
    if (!formatOut)
        return E_INVALIDARG;
    *formatOut = format == PixelType::RGB24 ? GUID_WICPixelFormat24bppRGB : GUID_WICPixelFormat8bppGray;
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
    if (!buffer)
        return E_INVALIDARG;
    const WICRect area = rect ? *rect : WICRect{0, 0, static_cast<INT>(width), static_cast<INT>(height)};
    if (area.Width < 0 || area.Height < 0 || area.X < 0 || area.Y < 0)
        return E_INVALIDARG;
    if (int64_t{area.X} + area.Width > width || int64_t{area.Y} + area.Height > height)
        return E_INVALIDARG;
    if (stride == 0)
        return E_INVALIDARG;
    if (bufferSize / stride < static_cast<UINT>(area.Height))
        return WINCODEC_ERR_INSUFFICIENTBUFFER;

    const size_t pixelBytes = BytesPerPicturePixel();
    const size_t rowBytes = pixelBytes * static_cast<size_t>(area.Width);
    for (size_t row = 0; row < static_cast<size_t>(area.Height); ++row)
    {
        const size_t source =
            pixelBytes * (static_cast<size_t>(area.X) + (static_cast<size_t>(area.Y) + row) * width);
        // If the caller chooses a stride shorter than a row, the rows overlap. Nothing is written beyond the
        // buffer.
        const size_t target = row * stride;
        std::copy_n(pixels.data() + source, std::min(rowBytes, bufferSize - target), buffer + target);
    }
    return S_OK;
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
