#include "formats/mrc/RawImageMrc.h"

#include "core/Diagnostics.h"
#include "core/stream/StreamReader.h"
#include "core/stream/Text.h"
#include "formats/mrc/MrcModes.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

constexpr ReaderLog log{L"MRC: "};

// Byte offsets of the header words that are read.
constexpr uint64_t sizeOffset = 0; // NX, NY, NZ and MODE, four words in a row
constexpr uint64_t extendedHeaderBytesOffset = 92;
constexpr uint64_t extendedTypeOffset = 104;
constexpr uint64_t versionOffset = 108;
constexpr uint64_t labelsOffset = 224;
constexpr size_t labelsBytes = 800;

constexpr uint64_t mainHeaderBytes = 1024;
// Some writers of long stacks pad the main header; the file size tells whether this one did.
constexpr uint32_t longStackSections = 1024;
constexpr uint64_t longStackHeaderBytes = 8192;

// Byte offsets in the extended header of type "TAV", which follows the main header.
constexpr uint64_t featuresOffset = mainHeaderBytes + 8;
constexpr uint64_t applicationOffset = mainHeaderBytes + 52;
constexpr uint64_t applicationVersionOffset = mainHeaderBytes + 68;
constexpr size_t applicationTextBytes = 16;
constexpr uint32_t applicationFeature = 3;
constexpr uint32_t applicationVersionFeature = 4;

struct SectionSize
{
    uint32_t columns;
    uint32_t rows;
    uint32_t sections;

    [[nodiscard]] bool IsPlausible() const noexcept
    {
        return columns != 0 && rows != 0 && columns < 65536 && rows < 65536;
    }
};

std::optional<SectionSize> ReadSize(StreamReader& reader, ByteOrder order)
{
    if (!reader.GoTo(sizeOffset))
        return std::nullopt;
    const auto columns = reader.ReadNumber<uint32_t>(order);
    const auto rows = reader.ReadNumber<uint32_t>(order);
    const auto sections = reader.ReadNumber<uint32_t>(order);
    if (!columns || !rows || !sections)
        return std::nullopt;
    return SectionSize{*columns, *rows, *sections};
}

/// The word at an absolute offset; nothing when the stream ends before its end.
std::optional<uint32_t> ReadWordAt(StreamReader& reader, uint64_t offset, ByteOrder order)
{
    if (reader.streamSize < offset + sizeof(uint32_t) || !reader.GoTo(offset))
        return std::nullopt;
    return reader.ReadNumber<uint32_t>(order);
}

/// The bytes at an absolute offset, as a view that the next read invalidates; nothing when the stream ends
/// before their end.
std::optional<std::span<const uint8_t>> ReadBytesAt(StreamReader& reader, uint64_t offset, size_t count)
{
    if (reader.streamSize < offset + count || !reader.GoTo(offset))
        return std::nullopt;
    return reader.ReadBytes(count);
}

/// SerialEM packs two 4-bit samples into each byte of a mode 0 file and says so in a label.
bool HasPackedSamples(StreamReader& reader)
{
    const auto labels = ReadBytesAt(reader, labelsOffset, labelsBytes);
    return labels && AsText(*labels).starts_with("SerialEM") &&
           AsText(*labels).find("4 bits packed") != std::string_view::npos;
}

/// The program named in an extended header of type "TAV", with its version where that is given.
std::optional<std::wstring> ReadApplication(StreamReader& reader)
{
    const auto type = ReadBytesAt(reader, extendedTypeOffset, 4);
    if (!type || !AsText(*type).starts_with("TAV"))
        return std::nullopt;
    const auto features = ReadWordAt(reader, featuresOffset, ByteOrder::LittleEndian);
    if (!features || (*features & applicationFeature) == 0)
        return std::nullopt;
    const auto nameBytes = ReadBytesAt(reader, applicationOffset, applicationTextBytes);
    if (!nameBytes)
        return std::nullopt;

    std::wstring application = WidenText(UpToZero(*nameBytes));
    if (application == L"TAV Tomography")
        application = L"Tomography";
    else if (application == L"TAV Ardix")
        application = L"Ardix";

    if ((*features & applicationVersionFeature) != 0)
    {
        if (const auto version = ReadBytesAt(reader, applicationVersionOffset, applicationTextBytes))
            application += L" " + WidenText(UpToZero(*version));
    }
    return application;
}

/// Where the sections lie: `count` whole ones of `sectionBytes` each from `offset` on.
struct SectionLayout
{
    uint64_t offset;
    uint32_t count;
};

/// Only the low half of the count is kept, and a data start beyond the end wraps to a huge count: the read
/// of the section then finds that the stream ends.
SectionLayout LayoutFrom(uint64_t offset, uint64_t streamSize, uint32_t sectionBytes) noexcept
{
    return {offset, static_cast<uint32_t>((streamSize - offset) / sectionBytes)};
}

} // namespace

bool RawImageMrc::Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex)
{
    fileType = FileType::Mrc;
    readMode = mode;

    StreamReader reader{stream};
    auto size = ReadSize(reader, byteOrder);
    if (!size)
        return false;
    if (!size->IsPlausible())
    {
        // Big-endian files are attributed to the program that wrote most of them.
        byteOrder = ByteOrder::BigEndian;
        flipVertical = true;
        software = L"Gatan Digital Micrograph";
        size = ReadSize(reader, byteOrder);
        if (!size)
            return false;
    }
    width = size->columns;
    height = size->rows;
    frameCount = size->sections;
    if (!size->IsPlausible())
        return false;

    const auto sampleMode = reader.ReadNumber<uint32_t>(byteOrder);
    if (!sampleMode)
        return false;
    pixelType = PixelTypeOf(mrcModes, *sampleMode);
    if (pixelType == PixelType::Unknown)
        return log.Fail(L"Unsupported pixel type");
    const auto extendedHeaderBytes = ReadWordAt(reader, extendedHeaderBytesOffset, byteOrder);
    if (!extendedHeaderBytes)
        return false;

    // The product wraps at 32 bits; one that wraps to nothing would divide by zero below.
    uint32_t sectionBytes = BytesPerPixel(pixelType) * height * width;
    if (pixelType == PixelType::UInt4)
        sectionBytes >>= 1;
    if (sectionBytes == 0)
        return false;

    const bool isLongStack = frameCount > longStackSections;
    const uint64_t headerBytes = isLongStack ? longStackHeaderBytes : mainHeaderBytes;
    // An extended header that leaves no room for one section is ignored.
    const bool hasExtendedHeader = headerBytes + *extendedHeaderBytes + sectionBytes <= streamSize;
    const uint64_t extendedBytes = hasExtendedHeader ? *extendedHeaderBytes : 0;

    SectionLayout layout = LayoutFrom(extendedBytes + headerBytes, streamSize, sectionBytes);
    if (layout.count < frameCount)
    {
        if (isLongStack)
            layout = LayoutFrom(extendedBytes + mainHeaderBytes, streamSize, sectionBytes);
        if (layout.count == 0)
            return log.Fail(L"No complete frame is present in the file");
        if (layout.count < frameCount)
        {
            log.Write(L"The file contains less frames than specified in the header");
            frameCount = layout.count;
        }
    }
    else if (frameCount == 0 && layout.count != 0)
    {
        log.Write(L"The file contains frames while the header specifies zero");
        frameCount = layout.count;
    }
    if (frameIndex >= frameCount)
        return log.Fail(L"Frame index is out of range");

    if (pixelType == PixelType::UInt4)
        log.Write(L"Non-standard mode 101 detected (4-bit pixel format)");
    if (pixelType == PixelType::Int8 && HasPackedSamples(reader))
    {
        log.Write(L"Non-standard 4-bit pixel format detected while mode 0 is specified");
        width *= 2;
        pixelType = PixelType::UInt4;
        flipVertical = true;
        software = L"SerialEM";
    }

    const auto version = ReadWordAt(reader, versionOffset, byteOrder);
    const bool isMrc2014 = version == 20140u || version == 20141u;
    if (isMrc2014)
        fileType = FileType::Mrc2014;
    formatDetails = (isMrc2014 ? L"MRC2014 Mode " : L"MRC Mode ") + std::to_wstring(*sampleMode);

    if (auto application = ReadApplication(reader))
        software = std::move(*application);

    return ConvertToDisplay(stream, streamSize, layout.offset + uint64_t{frameIndex} * sectionBytes);
}

} // namespace Tav::Imaging::RawImage
