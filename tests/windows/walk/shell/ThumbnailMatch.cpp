#include "windows/walk/shell/ThumbnailMatch.h"

#include "windows/walk/Host.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace {

constexpr UINT partsInLine = 16;
constexpr UINT colours = 3;

using Parts = std::array<double, size_t{partsInLine} * partsInLine * colours>;

void Require(HRESULT result, const std::string& what)
{
    if (FAILED(result))
        throw std::runtime_error(what + ": " + HexCode(static_cast<unsigned long>(result)));
}

ComPtr<IWICBitmapSource> Converted(IWICImagingFactory* factory, IWICBitmapSource* source, REFGUID format)
{
    ComPtr<IWICFormatConverter> converter;
    Require(factory->CreateFormatConverter(converter.Put()), "cannot make a converter");
    Require(converter->Initialize(source, format, WICBitmapDitherTypeNone, nullptr, 0,
                                  WICBitmapPaletteTypeCustom),
            "cannot convert a picture");
    return ComPtr<IWICBitmapSource>::Share(converter.Get());
}

/// The mean of each colour in each part.
Parts MeansOf(IWICImagingFactory* factory, IWICBitmapSource* source, UINT width, UINT height)
{
    // Wine converts gray pixels to these in two steps only.
    const ComPtr<IWICBitmapSource> opaque = Converted(factory, source, GUID_WICPixelFormat32bppBGR);
    const ComPtr<IWICBitmapSource> coloured = Converted(factory, opaque.Get(), GUID_WICPixelFormat24bppBGR);
    std::vector<uint8_t> pixels(size_t{width} * height * colours);
    Require(coloured->CopyPixels(nullptr, width * colours, static_cast<UINT>(pixels.size()), pixels.data()),
            "cannot read a picture");
    Parts means{};
    std::array<size_t, size_t{partsInLine} * partsInLine> counts{};
    for (UINT y = 0; y < height; ++y)
    {
        for (UINT x = 0; x < width; ++x)
        {
            const size_t part = size_t{y * partsInLine / height} * partsInLine + x * partsInLine / width;
            ++counts[part];
            for (size_t colour = 0; colour < colours; ++colour)
                means[part * colours + colour] += pixels[(size_t{y} * width + x) * colours + colour];
        }
    }
    for (size_t i = 0; i < means.size(); ++i)
        means[i] /= static_cast<double>(counts[i / colours]);
    return means;
}

/// Whether scaling one size by a whole number of pixels can give the other.
bool HaveSameShape(UINT width, UINT height, UINT otherWidth, UINT otherHeight)
{
    const double scaledHeight = static_cast<double>(otherHeight) * width / otherWidth;
    return std::abs(scaledHeight - height) <= 1.0;
}

} // namespace

ComPtr<IWICImagingFactory> ImagingFactory()
{
    ComPtr<IWICImagingFactory> factory;
    Require(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                             factory.PutVoid()),
            "there is no WIC");
    return factory;
}

ComPtr<IWICBitmapSource> PictureFile(IWICImagingFactory* factory, const std::filesystem::path& file)
{
    ComPtr<IWICBitmapDecoder> decoder;
    Require(factory->CreateDecoderFromFilename(file.c_str(), nullptr, GENERIC_READ,
                                               WICDecodeMetadataCacheOnLoad, decoder.Put()),
            "cannot open " + Utf8(file));
    ComPtr<IWICBitmapFrameDecode> frame;
    Require(decoder->GetFrame(0, frame.Put()), "cannot read " + Utf8(file));
    return ComPtr<IWICBitmapSource>::Share(frame.Get());
}

ThumbnailMatch Match(IWICImagingFactory* factory, IWICBitmapSource* thumbnail, IWICBitmapSource* picture)
{
    UINT width = 0;
    UINT height = 0;
    UINT pictureWidth = 0;
    UINT pictureHeight = 0;
    Require(thumbnail->GetSize(&width, &height), "a thumbnail has no size");
    Require(picture->GetSize(&pictureWidth, &pictureHeight), "a picture has no size");
    ThumbnailMatch match;
    if (std::min({width, height, pictureWidth, pictureHeight}) < partsInLine)
        return match;
    match.hasSameShape = HaveSameShape(width, height, pictureWidth, pictureHeight);
    const Parts shown = MeansOf(factory, thumbnail, width, height);
    const Parts expected = MeansOf(factory, picture, pictureWidth, pictureHeight);
    double sum = 0;
    for (size_t i = 0; i < shown.size(); ++i)
        sum += std::abs(shown[i] - expected[i]);
    match.difference = sum / static_cast<double>(shown.size());
    return match;
}
