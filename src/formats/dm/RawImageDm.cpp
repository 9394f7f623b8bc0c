#include "formats/dm/RawImageDm.h"

#include "core/Diagnostics.h"
#include "core/PixelTypeCode.h"
#include "core/stream/StreamReader.h"
#include "formats/dm/DmTagWalk.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <span>
#include <vector>

namespace Tav::Imaging::RawImage {

namespace {

/// For messages that do not depend on the version.
constexpr ReaderLog log{L"DM: "};

/// Some images of one size and type, one after another from `dataOffset` on.
struct ImageRun
{
    uint64_t dataOffset;
    uint32_t width;
    uint32_t height;
    uint32_t count;
    PixelType pixelType;
};

struct ChosenImage
{
    uint64_t dataOffset;
    uint32_t width;
    uint32_t height;
    PixelType pixelType;
    uint64_t imageCount;
};

constexpr PixelTypeCode dataTypes[] = {
    {1, PixelType::Int16}, {2, PixelType::Float32}, {6, PixelType::UInt8},   {7, PixelType::Int32},
    {9, PixelType::Int8},  {10, PixelType::UInt16}, {11, PixelType::UInt32}, {23, PixelType::RGBA32},
};

bool IsShown(PixelType type) noexcept
{
    constexpr PixelType shown[] = {PixelType::UInt8, PixelType::UInt16,  PixelType::UInt32, PixelType::Int16,
                                   PixelType::Int32, PixelType::Float32, PixelType::RGBA32};
    return std::find(std::begin(shown), std::end(shown), type) != std::end(shown);
}

/// The values of the 32-bit tags that follow the tag at `index`, up to three and up to the first other tag.
std::vector<uint32_t> ValuesAfter(std::span<const DmTag> tags, size_t index)
{
    std::vector<uint32_t> values;
    for (size_t next = index + 1; next < tags.size() && values.size() < 3; ++next)
    {
        if (tags[next].kind != DmTag::Kind::UInt32Value)
            break;
        values.push_back(tags[next].value);
    }
    return values;
}

/// Collects the images of the flat tag list. The format's programs write an image's tags in the order of
/// data, data type and dimensions.
std::vector<ImageRun> FindImages(std::span<const DmTag> tags)
{
    std::vector<ImageRun> images;
    ImageRun image = {}; // without a pixel type until a tag gives one
    bool hasData = false;
    bool hasDimensions = false;
    const auto forget = [&] {
        image = {};
        hasData = false;
        hasDimensions = false;
    };

    for (size_t index = 0; index < tags.size(); ++index)
    {
        const DmTag& tag = tags[index];
        if (tag.kind == DmTag::Kind::LargeArray)
        {
            image.dataOffset = tag.dataOffset;
            hasData = true;
        }
        if (!hasData)
            continue;
        if (tag.kind == DmTag::Kind::DataTypeLabel)
        {
            const auto values = ValuesAfter(tags, index);
            if (!values.empty())
                image.pixelType = PixelTypeOf(dataTypes, values[0]);
            if (!values.empty() && image.pixelType == PixelType::Unknown)
                forget();
        }
        else if (tag.kind == DmTag::Kind::DimensionsLabel)
        {
            const auto values = ValuesAfter(tags, index);
            if (values.size() >= 2)
            {
                image.width = values[0];
                image.height = values[1];
                image.count = values.size() == 3 ? values[2] : 1;
                hasDimensions = true;
            }
        }
        if (hasDimensions && image.pixelType != PixelType::Unknown)
        {
            images.push_back(image);
            forget();
        }
    }
    return images;
}

/// Chooses an image by its index. The thumbnail, which is a colour image before the others, does not count.
std::optional<ChosenImage> ChooseImage(std::span<const ImageRun> images, uint32_t frameIndex)
{
    uint64_t imageCount = 0;
    std::optional<uint64_t> firstColour;
    for (const ImageRun& run : images)
    {
        if (!firstColour && run.pixelType == PixelType::RGBA32 && run.count > 0)
            firstColour = imageCount;
        imageCount += run.count;
    }
    if (frameIndex >= imageCount)
        return std::nullopt;

    const auto note = [frameIndex](std::wstring_view message) {
        if (frameIndex == 0)
            log.Write(message);
    };
    uint64_t index = frameIndex;
    if (imageCount >= 2 && firstColour == 0u)
    {
        --imageCount;
        ++index;
        note(L"The embedded thumbnail will be ignored");
        if (frameIndex >= imageCount)
            return std::nullopt;
    }
    else if (!firstColour)
    {
        note(L"No thumbnail image found");
    }
    else if (*firstColour > 0)
    {
        note(L"The thumbnail image is not the first image in the file");
    }

    for (const ImageRun& run : images)
    {
        if (index < run.count)
        {
            // Both products wrap at 32 bits.
            const uint32_t imageBytes = BytesPerPixel(run.pixelType) * run.height * run.width;
            const uint32_t distance = static_cast<uint32_t>(index) * imageBytes;
            return ChosenImage{run.dataOffset + distance, run.width, run.height, run.pixelType, imageCount};
        }
        index -= run.count;
    }
    return std::nullopt;
}

/// The images of all tags from the reader's position on.
std::vector<ImageRun> WalkToImages(StreamReader& reader, bool hasWideFields)
{
    DmTagWalk walk{reader, hasWideFields};
    walk.Run();
    return FindImages(walk.tags);
}

} // namespace

bool RawImageDm::Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex)
{
    fileType = version.fileType;
    readMode = mode;
    software = L"Gatan Digital Micrograph";

    StreamReader reader{stream};
    const auto number = reader.ReadNumber<uint32_t>(ByteOrder::BigEndian);
    if (!number)
        return false;
    if (*number != version.number)
        return version.log.Fail(L"Invalid version number");
    if (version.hasWideFields && !reader.Skip(sizeof(uint32_t)))
        return false;
    const auto rootBytes = reader.ReadNumber<uint32_t>(ByteOrder::BigEndian);
    if (!rootBytes)
        return false;
    constexpr uint64_t bytesAroundRoot = 24;
    const bool isSizeRight = version.hasWideFields ? *rootBytes == streamSize - bytesAroundRoot
                                                   : *rootBytes != 0 && *rootBytes <= streamSize;
    if (!isSizeRight)
        return version.log.Fail(L"Invalid checksum (number of bytes)");
    const auto dataByteOrder = reader.ReadNumber<uint32_t>(ByteOrder::BigEndian);
    if (!dataByteOrder)
        return false;
    if (*dataByteOrder == 0)
        return version.log.Fail(L"Big endian byte ordering for data is not supported");

    const auto image = ChooseImage(WalkToImages(reader, version.hasWideFields), frameIndex);
    if (!image)
        return version.log.Fail(L"No images found");
    width = image->width;
    height = image->height;
    pixelType = image->pixelType;
    frameCount =
        static_cast<uint32_t>(std::min<uint64_t>(image->imageCount, std::numeric_limits<uint32_t>::max()));
    if (!IsShown(pixelType))
        return version.log.Fail(L"Unsupported pixel type");
    return ConvertToDisplay(stream, streamSize, image->dataOffset);
}

} // namespace Tav::Imaging::RawImage
