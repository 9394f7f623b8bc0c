// The copy of a part of a picture into a caller's buffer: any picture, area, stride and buffer.

#include "Target.h"

#include "core/display/CopyArea.h"

#include <fuzzer/FuzzedDataProvider.h>

using namespace Tav::Imaging::RawImage;

namespace {

constexpr uint8_t untouched = 0xEE;

/// Mostly a number about as large as a picture here; sometimes any number.
template <class Number>
Number SomeNumber(FuzzedDataProvider& input)
{
    return input.ConsumeIntegralInRange(0, 7) == 0
               ? input.ConsumeIntegral<Number>()
               : static_cast<Number>(input.ConsumeIntegralInRange<int32_t>(0, 40));
}

DisplayPicture SomePicture(FuzzedDataProvider& input)
{
    DisplayPicture picture;
    picture.width = input.ConsumeIntegralInRange<uint32_t>(0, 32);
    picture.height = input.ConsumeIntegralInRange<uint32_t>(0, 32);
    picture.format = input.ConsumeBool() ? PixelType::RGB24 : PixelType::UInt8;
    picture.pixels = FrameBytes(size_t{BytesPerPixel(picture.format)} * picture.width * picture.height);
    for (size_t i = 0; i < picture.pixels.size(); ++i)
        picture.pixels.data()[i] = static_cast<uint8_t>(i % untouched);
    return picture;
}

/// The result, byte by byte.
CopyResult ReferenceCopy(const DisplayPicture& picture, const PictureArea& area, uint32_t stride,
                         Bytes& buffer)
{
    const int64_t width = area.width;
    const int64_t height = area.height;
    const bool isWithin = area.x >= 0 && area.y >= 0 && width >= 0 && height >= 0 &&
                          area.x + width <= picture.width && area.y + height <= picture.height;
    if (!isWithin || stride == 0)
        return CopyResult::InvalidArgument;
    if (static_cast<int64_t>(buffer.size() / stride) < height)
        return CopyResult::BufferTooSmall;
    const int64_t pixelBytes = picture.format == PixelType::RGB24 ? 3 : 1;
    for (int64_t row = 0; row < height; ++row)
    {
        for (int64_t byte = 0; byte < width * pixelBytes; ++byte)
        {
            const auto target = static_cast<uint64_t>(row * stride + byte);
            const int64_t source = ((area.y + row) * picture.width + area.x) * pixelBytes + byte;
            if (target < buffer.size())
                buffer[target] = picture.pixels.data()[source];
        }
    }
    return CopyResult::Copied;
}

void CopySomeArea(std::span<const uint8_t> data)
{
    FuzzedDataProvider input{data.data(), data.size()};
    const DisplayPicture picture = SomePicture(input);
    std::optional<PictureArea> area;
    if (input.ConsumeBool())
        area = PictureArea{SomeNumber<int32_t>(input), SomeNumber<int32_t>(input), SomeNumber<int32_t>(input),
                           SomeNumber<int32_t>(input)};
    const auto stride = SomeNumber<uint32_t>(input);
    Bytes buffer(input.ConsumeIntegralInRange<size_t>(1, 4096), untouched);
    Bytes expected = buffer;

    const CopyResult result =
        CopyArea(picture, area, {buffer.data(), stride, static_cast<uint32_t>(buffer.size())});

    const PictureArea whole = {0, 0, static_cast<int32_t>(picture.width),
                               static_cast<int32_t>(picture.height)};
    Require(result == ReferenceCopy(picture, area.value_or(whole), stride, expected));
    Require(buffer == expected);
    Require(CopyArea(picture, area, {nullptr, stride, 4096}) == CopyResult::InvalidArgument);
}

} // namespace

std::vector<Target> CopyTargets()
{
    return {{"copies", CopySomeArea}};
}
