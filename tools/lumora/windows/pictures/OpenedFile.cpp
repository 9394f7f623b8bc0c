#include "lumora/pictures/OpenedFile.h"

#include "lumora/windows/Results.h"
#include "lumora/windows/pictures/HdfTurn.h"
#include "lumora/windows/pictures/WicImaging.h"
#include "registration/ClassIds.h"

#include <utility>

namespace Lumora {

namespace {

/// A frame that Lumora's decoder has decoded.
class WicPicture final : public Picture
{
public:
    WicPicture(ComPtr<IWICBitmapFrameDecode> decodedFrame, Box size, uint32_t pictureChannels)
        : Picture(size.width, size.height, pictureChannels), frame(std::move(decodedFrame))
    {}

    void CopyRow(uint32_t row, uint8_t* target) const override
    {
        const WICRect area = {0, static_cast<INT>(row), static_cast<INT>(width), 1};
        const auto bytes = static_cast<UINT>(RowBytes());
        Require(frame->CopyPixels(&area, bytes, bytes, target), cannotDecode);
        if (channels == 1)
            return;
        // The decoder gives red first.
        for (size_t pixel = 0; pixel < bytes; pixel += channels)
            std::swap(target[pixel], target[pixel + 2]);
    }

    static constexpr const wchar_t* cannotDecode = L"cannot decode the frame";

private:
    const ComPtr<IWICBitmapFrameDecode> frame;
};

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

} // namespace

struct OpenedFile::Means
{
    ComPtr<IWICBitmapDecoder> decoder;
};

OpenedFile::OpenedFile(Imaging& imaging, const std::wstring& path) : means(std::make_unique<Means>())
{
    IWICImagingFactory& factory = imaging.means->Factory();
    ReadInTurn([&] {
        Require(factory.CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                                  WICDecodeMetadataCacheOnDemand, means->decoder.Put()),
                cannotReadPicture);
    });
    GUID format = {};
    Require(means->decoder->GetContainerFormat(&format), L"cannot ask for the format");
    if (format != GUID_ContainerFormatLumora)
        throw Failure{L"WIC opens this file with " + NameOf(*means->decoder.Get()) + L", not with Lumora"};
}

OpenedFile::~OpenedFile() = default;

uint32_t OpenedFile::FrameCount() const
{
    UINT count = 0;
    Require(means->decoder->GetFrameCount(&count), L"cannot count the frames");
    return count;
}

std::unique_ptr<Picture> OpenedFile::Frame(uint32_t index) const
{
    ComPtr<IWICBitmapFrameDecode> frame;
    ReadInTurn([&] { Require(means->decoder->GetFrame(index, frame.Put()), WicPicture::cannotDecode); });
    Box size;
    Require(frame->GetSize(&size.width, &size.height), L"cannot ask for the frame's size");
    WICPixelFormatGUID format = {};
    Require(frame->GetPixelFormat(&format), L"cannot ask for the frame's pixel format");
    const bool isColour = format == GUID_WICPixelFormat24bppRGB;
    if (!isColour && format != GUID_WICPixelFormat8bppGray)
        throw Failure{L"the decoder gives pixels of another format"};
    const uint32_t channels = isColour ? 3 : 1;
    return std::make_unique<WicPicture>(std::move(frame), size, channels);
}

} // namespace Lumora
