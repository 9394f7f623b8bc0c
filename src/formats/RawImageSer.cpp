#include "formats/RawImageSer.h"

#include "core/Diagnostics.h"
#include "core/PixelTypeCode.h"
#include "core/stream/StreamReader.h"

#include <optional>
#include <string_view>

namespace Tav::Imaging::RawImage {

namespace {

constexpr ReaderLog log{L"SER: "};

constexpr ByteOrder order = ByteOrder::LittleEndian;

constexpr uint16_t littleEndianStamp = 0x4949;
constexpr uint16_t seriesStamp = 0x0197;
constexpr uint16_t lowestVersion = 0x0210;
constexpr uint32_t imageElements = 0x4122;

// Byte offsets in an element.
constexpr uint64_t elementTypeOffset = 40;
constexpr uint64_t elementSamplesOffset = 50;

constexpr PixelTypeCode dataTypes[] = {
    {1, PixelType::UInt8},     {2, PixelType::UInt16},      {3, PixelType::UInt32},  {4, PixelType::Int8},
    {5, PixelType::Int16},     {6, PixelType::Int32},       {7, PixelType::Float32}, {8, PixelType::Double64},
    {9, PixelType::Complex64}, {10, PixelType::Complex128},
};

struct SeriesHeader
{
    uint16_t version;
    uint32_t validElements;
    uint32_t offsetArray;
};

std::optional<SeriesHeader> ReadSeriesHeader(StreamReader& reader)
{
    const auto refuse = [](std::wstring_view message) {
        log.Write(message);
        return std::nullopt;
    };
    const auto byteOrderStamp = reader.ReadNumber<uint16_t>(order);
    if (!byteOrderStamp)
        return std::nullopt;
    if (*byteOrderStamp != littleEndianStamp)
        return refuse(L"Unsupported byte order");
    const auto identifier = reader.ReadNumber<uint16_t>(order);
    if (!identifier)
        return std::nullopt;
    if (*identifier != seriesStamp)
        return refuse(L"Invalid stamp");
    const auto version = reader.ReadNumber<uint16_t>(order);
    if (!version)
        return std::nullopt;
    if (*version < lowestVersion)
        return refuse(L"Too low version number");
    const auto dataType = reader.ReadNumber<uint32_t>(order);
    if (!dataType)
        return std::nullopt;
    if (*dataType != imageElements)
        return refuse(L"No 2D data structure found");

    const auto tagType = reader.ReadNumber<uint32_t>(order);
    const auto totalElements = reader.ReadNumber<uint32_t>(order);
    const auto validElements = reader.ReadNumber<uint32_t>(order);
    // Newer versions widen this field to 8 bytes; its low half serves all files below 4 GiB.
    const auto offsetArray = reader.ReadNumber<uint32_t>(order);
    if (!tagType || !totalElements || !validElements || !offsetArray)
        return std::nullopt;
    if (*totalElements == 0 || *validElements == 0)
        return refuse(L"No images found");
    return SeriesHeader{*version, *validElements, *offsetArray};
}

std::optional<uint64_t> ReadEntry(StreamReader& reader, bool isShort)
{
    if (isShort)
        return reader.ReadNumber<uint32_t>(order);
    return reader.ReadNumber<uint64_t>(order);
}

/// The offset of one element. Every entry is checked: an array with a bad one is damaged.
std::optional<uint64_t> ReadElementOffset(StreamReader& reader, const SeriesHeader& header,
                                          uint32_t frameIndex)
{
    const bool hasShortEntries = header.version == lowestVersion;
    const uint64_t entryBytes = hasShortEntries ? sizeof(uint32_t) : sizeof(uint64_t);
    if (header.offsetArray > reader.streamSize ||
        reader.streamSize - header.offsetArray < entryBytes * header.validElements ||
        !reader.GoTo(header.offsetArray))
        return std::nullopt;

    uint64_t chosen = 0;
    for (uint32_t element = 0; element < header.validElements; ++element)
    {
        const std::optional<uint64_t> offset = ReadEntry(reader, hasShortEntries);
        if (!offset || *offset >= reader.streamSize)
            return std::nullopt;
        if (element == frameIndex)
            chosen = *offset;
    }
    return chosen;
}

} // namespace

bool RawImageSer::Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex)
{
    fileType = FileType::Ser;
    readMode = mode;
    software = L"Pellox";

    StreamReader reader{stream};
    const auto header = ReadSeriesHeader(reader);
    if (!header)
        return false;
    const auto element = ReadElementOffset(reader, *header, frameIndex);
    if (!element)
        return false;
    if (frameIndex >= header->validElements)
        return log.Fail(L"Frame index is out of range");
    frameCount = header->validElements;
    flipVertical = true;

    if (!reader.GoTo(*element) || !reader.Skip(elementTypeOffset))
        return false;
    const auto dataType = reader.ReadNumber<uint16_t>(order);
    if (!dataType)
        return false;
    pixelType = PixelTypeOf(dataTypes, *dataType);
    const auto columns = reader.ReadNumber<uint32_t>(order);
    if (!columns)
        return false;
    width = *columns;
    const auto rows = reader.ReadNumber<uint32_t>(order);
    if (!rows)
        return false;
    height = *rows;
    if (pixelType == PixelType::Unknown)
        return log.Fail(L"Unsupported pixel type");
    return ConvertToDisplay(stream, streamSize, *element + elementSamplesOffset);
}

} // namespace Tav::Imaging::RawImage
