#include "lumora/pictures/PictureFile.h"

#include "lumora/console/Failure.h"
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

uint32_t Scaled(uint32_t side, uint32_t longerSide, uint32_t wantedLongerSide)
{
    const uint64_t rounded = (uint64_t{side} * wantedLongerSide + longerSide / 2) / longerSide;
    return std::max<uint32_t>(1, static_cast<uint32_t>(rounded));
}

} // namespace

PictureFile::PictureFile(IWICImagingFactory& wicFactory, const std::wstring& path) : factory(wicFactory)
{
    Require(factory.CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                              WICDecodeMetadataCacheOnDemand, decoder.Put()),
            L"WIC cannot open the file");
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

ComPtr<IWICBitmapSource> PictureFile::Frame(uint32_t index, std::optional<uint32_t> longerSide) const
{
    if (const uint32_t count = FrameCount(); index >= count)
        throw Failure{L"there is no frame " + std::to_wstring(index) + L"; the file has " +
                      std::to_wstring(count) + (count == 1 ? L" frame" : L" frames")};
    ComPtr<IWICBitmapFrameDecode> frame;
    Require(decoder->GetFrame(index, frame.Put()), L"cannot decode the frame");
    UINT width = 0;
    UINT height = 0;
    Require(frame->GetSize(&width, &height), L"cannot ask for the frame's size");

    const uint32_t longer = std::max(width, height);
    if (!longerSide || longer <= *longerSide)
        return ComPtr<IWICBitmapSource>::Adopt(frame.Detach());
    ComPtr<IWICBitmapScaler> scaler;
    Require(factory.CreateBitmapScaler(scaler.Put()), L"cannot make a scaler");
    Require(scaler->Initialize(frame.Get(), Scaled(width, longer, *longerSide),
                               Scaled(height, longer, *longerSide), WICBitmapInterpolationModeFant),
            L"cannot scale the frame");
    return ComPtr<IWICBitmapSource>::Adopt(scaler.Detach());
}

} // namespace Lumora
