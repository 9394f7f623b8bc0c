#include "lumora/pictures/PictureFile.h"

#include "lumora/windows/pictures/HdfTurn.h"
#include "registration/ClassIds.h"

#include <algorithm>

namespace Lumora {

namespace {

/// What the codec calls itself.
std::wstring NameOf(IWICBitmapDecoder& decoder)
{
    ComPtr<IWICBitmapDecoderInfo> info;
    UINT length = 0;
    if (FAILED(decoder.GetDecoderInfo(info.Put())) || FAILED(info->GetFriendlyName(0, nullptr, &length)) ||
        length == 0)
        return L"another codec";
    std::wstring name(length, L'\0');
    if (FAILED(info->GetFriendlyName(length, name.data(), &length)))
        return L"another codec";
    name.resize(length - 1);
    return name;
}

/// One side, scaled as the other one is from `from` to `to` pixels.
uint32_t Scaled(uint32_t side, uint32_t from, uint32_t to)
{
    const uint64_t rounded = (uint64_t{side} * to + from / 2) / from;
    return std::max<uint32_t>(1, static_cast<uint32_t>(rounded));
}

/// The largest size of the same shape that has room in the box.
Box Fitted(Box picture, Box room)
{
    if (uint64_t{picture.width} * room.height >= uint64_t{picture.height} * room.width)
        return {room.width, std::min(room.height, Scaled(picture.height, picture.width, room.width))};
    return {std::min(room.width, Scaled(picture.width, picture.height, room.height)), room.height};
}

std::wstring FramesOf(uint32_t count)
{
    return L"the file has " + std::to_wstring(count) + (count == 1 ? L" frame" : L" frames");
}

} // namespace

PictureFile::PictureFile(IWICImagingFactory& wicFactory, const std::wstring& path) : factory(wicFactory)
{
    ReadInTurn([&] {
        Require(factory.CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                                  WICDecodeMetadataCacheOnDemand, decoder.Put()),
                L"WIC cannot open the file");
    });
    GUID format = {};
    Require(decoder->GetContainerFormat(&format), L"cannot ask for the format");
    if (format != GUID_ContainerFormatLumora)
        throw Failure{L"WIC opens this file with " + NameOf(*decoder.Get()) + L", not with Lumora"};
}

uint32_t PictureFile::FrameCount() const
{
    UINT count = 0;
    Require(decoder->GetFrameCount(&count), L"cannot count the frames");
    return count;
}

ComPtr<IWICBitmapSource> PictureFile::Frame(uint32_t index, std::optional<Box> box) const
{
    if (const uint32_t count = FrameCount(); index >= count)
        throw Failure{L"there is no frame " + std::to_wstring(index) + L"; " + FramesOf(count)};
    ComPtr<IWICBitmapFrameDecode> frame;
    ReadInTurn([&] { Require(decoder->GetFrame(index, frame.Put()), L"cannot decode the frame"); });
    UINT width = 0;
    UINT height = 0;
    Require(frame->GetSize(&width, &height), L"cannot ask for the frame's size");
    if (!box || (width <= box->width && height <= box->height))
        return ComPtr<IWICBitmapSource>::Adopt(frame.Detach());
    const Box size = Fitted({width, height}, *box);
    ComPtr<IWICBitmapScaler> scaler;
    Require(factory.CreateBitmapScaler(scaler.Put()), L"cannot make a scaler");
    Require(scaler->Initialize(frame.Get(), size.width, size.height, WICBitmapInterpolationModeFant),
            L"cannot scale the frame");
    return ComPtr<IWICBitmapSource>::Adopt(scaler.Detach());
}

Failure NoFrames(uint32_t frameCount)
{
    return {L"none of these frames is there; " + FramesOf(frameCount)};
}

PixelBlock CopyOf(IWICBitmapSource& picture)
{
    UINT width = 0;
    UINT height = 0;
    Require(picture.GetSize(&width, &height), L"cannot ask for the picture's size");
    // Wine cannot convert gray pixels to three bytes directly, but from four bytes it can.
    ComPtr<IWICBitmapSource> wide;
    ComPtr<IWICBitmapSource> converted;
    Require(WICConvertBitmapSource(GUID_WICPixelFormat32bppBGR, &picture, wide.Put()),
            L"cannot convert the picture");
    Require(WICConvertBitmapSource(GUID_WICPixelFormat24bppBGR, wide.Get(), converted.Put()),
            L"cannot convert the picture");
    PixelBlock block = {width, height, {}};
    block.pixels.resize(block.Stride() * height);
    Require(converted->CopyPixels(nullptr, static_cast<UINT>(block.Stride()),
                                  static_cast<UINT>(block.pixels.size()), block.pixels.data()),
            L"cannot decode the frame");
    return block;
}

} // namespace Lumora
