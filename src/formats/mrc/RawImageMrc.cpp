#include "formats/mrc/RawImageMrc.h"

#include "core/Diagnostics.h"
#include "core/stream/Text.h"
#include "formats/mrc/MrcModes.h"

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
// Some writers of long stacks pad the main header; the file size shows whether this one did.
constexpr uint32_t longStackSections = 1024;
constexpr uint64_t longStackHeaderBytes = 8192;

// Byte offsets in the extended header of type "TAV", which follows the main header.
constexpr uint64_t featuresOffset = mainHeaderBytes + 8;
constexpr uint64_t applicationOffset = mainHeaderBytes + 52;
constexpr uint64_t applicationVersionOffset = mainHeaderBytes + 68;
constexpr size_t applicationTextBytes = 16;
constexpr uint32_t applicationFeature = 3;
constexpr uint32_t applicationVersionFeature = 4;

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

/// The number of whole sections after an offset, modulo 2^32. If the offset is beyond the end of the stream,
/// the count is huge, and reading the section then fails.
uint32_t CountSections(uint64_t offset, uint64_t streamSize, uint32_t sectionBytes) noexcept
{
    return static_cast<uint32_t>((streamSize - offset) / sectionBytes);
}

} // namespace

bool RawImageMrc::Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex)
{
    fileType = FileType::Mrc;
    readMode = mode;

    StreamReader reader{stream};
    if (!ReadSizeInEitherByteOrder(reader))
        return false;
    const auto modeNumber = reader.ReadNumber<uint32_t>(byteOrder);
    if (!modeNumber)
        return false;
    pixelType = PixelTypeOf(mrcModes, *modeNumber);
    if (pixelType == PixelType::Unknown)
        return log.Fail(L"Unsupported pixel type");
    const auto extendedHeaderBytes = ReadWordAt(reader, extendedHeaderBytesOffset, byteOrder);
    const uint32_t sectionBytes = SectionBytes();
    if (!extendedHeaderBytes || sectionBytes == 0)
        return false;
    const auto firstSection = FindSections(streamSize, *extendedHeaderBytes, sectionBytes);
    if (!firstSection)
        return false;
    if (frameIndex >= frameCount)
        return log.Fail(L"Frame index is out of range");

    RecognisePackedSamples(reader);
    ReadVersion(reader, *modeNumber);
    if (auto application = ReadApplication(reader))
        software = std::move(*application);
    return ConvertToDisplay(stream, streamSize, *firstSection + uint64_t{frameIndex} * sectionBytes);
}

bool RawImageMrc::ReadSizeInEitherByteOrder(StreamReader& reader)
{
    if (!ReadSize(reader))
        return false;
    if (HasPlausibleSize())
        return true;
    // Big-endian files are attributed to the program that wrote most of them.
    byteOrder = ByteOrder::BigEndian;
    flipVertical = true;
    software = L"Gatan Digital Micrograph";
    return ReadSize(reader) && HasPlausibleSize();
}

bool RawImageMrc::ReadSize(StreamReader& reader)
{
    if (!reader.GoTo(sizeOffset))
        return false;
    const auto columns = reader.ReadNumber<uint32_t>(byteOrder);
    const auto rows = reader.ReadNumber<uint32_t>(byteOrder);
    const auto sections = reader.ReadNumber<uint32_t>(byteOrder);
    if (!columns || !rows || !sections)
        return false;
    width = *columns;
    height = *rows;
    frameCount = *sections;
    return true;
}

bool RawImageMrc::HasPlausibleSize() const noexcept
{
    return width != 0 && height != 0 && width < 65536 && height < 65536;
}

uint32_t RawImageMrc::SectionBytes() const noexcept
{
    // The product wraps at 32 bits, perhaps to 0.
    const uint32_t bytes = BytesPerPixel(pixelType) * height * width;
    return pixelType == PixelType::UInt4 ? bytes >> 1 : bytes;
}

std::optional<uint64_t> RawImageMrc::FindSections(uint64_t streamSize, uint32_t extendedHeaderBytes,
                                                  uint32_t sectionBytes)
{
    const bool isLongStack = frameCount > longStackSections;
    const uint64_t headerBytes = isLongStack ? longStackHeaderBytes : mainHeaderBytes;
    // An extended header that leaves no room for one section is ignored.
    const bool hasExtendedHeader = headerBytes + extendedHeaderBytes + sectionBytes <= streamSize;
    const uint64_t extendedBytes = hasExtendedHeader ? extendedHeaderBytes : 0;

    uint64_t first = extendedBytes + headerBytes;
    uint32_t count = CountSections(first, streamSize, sectionBytes);
    if (count < frameCount)
    {
        if (isLongStack)
        {
            first = extendedBytes + mainHeaderBytes;
            count = CountSections(first, streamSize, sectionBytes);
        }
        if (count == 0)
        {
            log.Write(L"No complete frame is present in the file");
            return std::nullopt;
        }
        if (count < frameCount)
        {
            log.Write(L"The file contains less frames than specified in the header");
            frameCount = count;
        }
    }
    else if (frameCount == 0 && count != 0)
    {
        log.Write(L"The file contains frames while the header specifies zero");
        frameCount = count;
    }
    return first;
}

void RawImageMrc::RecognisePackedSamples(StreamReader& reader)
{
    if (pixelType == PixelType::UInt4)
        log.Write(L"Non-standard mode 101 detected (4-bit pixel format)");
    if (pixelType != PixelType::Int8)
        return;
    // SerialEM packs two 4-bit samples into each byte of a mode 0 file and says so in a label.
    const auto labels = ReadBytesAt(reader, labelsOffset, labelsBytes);
    if (!labels || !AsText(*labels).starts_with("SerialEM") ||
        AsText(*labels).find("4 bits packed") == std::string_view::npos)
        return;
    log.Write(L"Non-standard 4-bit pixel format detected while mode 0 is specified");
    width *= 2;
    pixelType = PixelType::UInt4;
    flipVertical = true;
    software = L"SerialEM";
}

void RawImageMrc::ReadVersion(StreamReader& reader, uint32_t modeNumber)
{
    const auto version = ReadWordAt(reader, versionOffset, byteOrder);
    const bool isMrc2014 = version == 20140u || version == 20141u;
    if (isMrc2014)
        fileType = FileType::Mrc2014;
    formatDetails = (isMrc2014 ? L"MRC2014 Mode " : L"MRC Mode ") + std::to_wstring(modeNumber);
}

} // namespace Tav::Imaging::RawImage
