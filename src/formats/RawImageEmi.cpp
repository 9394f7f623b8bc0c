#include "formats/RawImageEmi.h"

#include "core/Diagnostics.h"
#include "core/stream/StreamReader.h"
#include "core/stream/Text.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tav::Imaging::RawImage {

namespace {

constexpr ReaderLog log{L"EMI: "};

constexpr ByteOrder order = ByteOrder::LittleEndian;

constexpr std::string_view writerName = "Pellox";

constexpr uint16_t fileStamp = 0x4B4A;
constexpr uint16_t highestVersion = 0x0200;
constexpr uint64_t firstItemOffset = 8;

constexpr uint16_t blockFlag = 0x2000;
constexpr uint16_t firstArrayType = 0x2200;
constexpr uint16_t lastArrayType = 0x2214;
constexpr uint16_t textType = 96;
constexpr uint16_t newerWriterType = 52;
constexpr uint16_t writerVersionIdentifier = 1810;
constexpr uint32_t longestWriterVersion = 32;
/// The bytes of the dimension words. The length of an array counts them, too.
constexpr uint32_t dimensionBytes = 8;

struct ArrayImage
{
    uint64_t samplesOffset;
    uint16_t width;
    uint16_t height;
    PixelType pixelType;
};

struct ArrayKind
{
    uint16_t type;
    uint32_t sampleBytes;
    PixelType pixelType;
};

constexpr ArrayKind arrayKinds[] = {
    {0x2202, 1, PixelType::UInt8},     {0x2204, 2, PixelType::Int16},  {0x2206, 2, PixelType::UInt16},
    {0x2208, 4, PixelType::Int32},     {0x220A, 4, PixelType::UInt32}, {0x220C, 4, PixelType::Float32},
    {0x2214, 8, PixelType::Complex64},
};

/// The array's pixel type; Unknown, after a diagnostic line, for a type that is not read.
PixelType PixelTypeOfArray(uint16_t type, uint32_t sampleBytes) noexcept
{
    for (const ArrayKind& kind : arrayKinds)
    {
        if (kind.type == type && kind.sampleBytes == sampleBytes)
            return kind.pixelType;
    }
    if (type == 0x2200 && sampleBytes == 1)
        log.Write(L"Unsupported pixel type -> Int8 (CharArrayType_2D)");
    else if (type == 0x220E && sampleBytes == 8)
        log.Write(L"Unsupported pixel type -> Double64 (DoubleArrayType_2D)");
    else
        log.Write(L"Unsupported pixel type");
    return PixelType::Unknown;
}

constexpr bool IsArray(uint16_t type) noexcept
{
    return type >= firstArrayType && type <= lastArrayType && type % 2 == 0;
}

/// Length of the contents of an item of fixed length; 0 for types that have none.
constexpr uint32_t FixedContentBytes(uint16_t type) noexcept
{
    switch (type)
    {
    case 16:
    case 32:
    case 112:
        return 1;
    case 48:
    case 50:
        return 2;
    case 49:
    case 51:
    case 64:
        return 4;
    case 65:
    case newerWriterType:
        return 8;
    default:
        return 0;
    }
}

/// Walks through the items and collects the images and the facts about the writer.
class ItemWalk
{
public:
    explicit ItemWalk(StreamReader& source) : reader(source) {}

    /// Reads items until one cannot be read whole; what was found before stays.
    void Run()
    {
        while (ReadItem())
        {}
    }

    std::vector<ArrayImage> images;
    /// The writer's name and versions, as bytes: a file can consist of versions, and wide characters take
    /// several times as much memory while the text grows.
    std::string writer{writerName};
    bool needsNewerWriter = false;

private:
    bool ReadItem()
    {
        const auto type = reader.ReadNumber<uint16_t>(order);
        if (!type)
            return false;
        if (*type == 0)
            return true;
        const auto identifier = reader.ReadNumber<uint16_t>(order);
        if (!identifier)
            return false;
        if (IsArray(*type))
            return ReadArray(*type);
        if (*type == textType)
            return ReadText(*identifier);
        if ((*type & blockFlag) != 0)
            return SkipBlock();

        if (!reader.Skip(FixedContentBytes(*type)))
            return false;
        needsNewerWriter = needsNewerWriter || *type == newerWriterType;
        return true;
    }

    bool SkipBlock()
    {
        const auto length = reader.ReadNumber<uint32_t>(order);
        return length && reader.Skip(*length);
    }

    bool ReadText(uint16_t identifier)
    {
        const auto length = reader.ReadNumber<uint32_t>(order);
        if (!length)
            return false;
        if (identifier != writerVersionIdentifier || *length == 0 || *length > longestWriterVersion)
            return reader.Skip(*length);
        const auto text = reader.ReadBytes(*length);
        if (!text)
            return false;
        writer += ' ';
        writer += AsText(*text);
        return true;
    }

    bool ReadArray(uint16_t type)
    {
        const auto length = reader.ReadNumber<uint32_t>(order);
        const auto width = reader.ReadNumber<uint16_t>(order);
        const auto unused = reader.ReadNumber<uint16_t>(order);
        const auto height = reader.ReadNumber<uint16_t>(order);
        const auto alsoUnused = reader.ReadNumber<uint16_t>(order);
        if (!length || !width || !unused || !height || !alsoUnused)
            return false;

        if (*length != 0 && *width != 0 && *height != 0)
        {
            // The length counts the dimension words, too. The division rounds them away, except in tiny
            // images.
            const uint32_t sampleBytes = *length / (uint32_t{*width} * *height);
            if (sampleBytes >= 1 && sampleBytes <= 8)
                AddImage(type, sampleBytes, *width, *height);
        }
        // A length that is smaller than the dimension words is invalid.
        return *length >= dimensionBytes && reader.Skip(*length - dimensionBytes);
    }

    void AddImage(uint16_t type, uint32_t sampleBytes, uint16_t width, uint16_t height)
    {
        const PixelType pixelType = PixelTypeOfArray(type, sampleBytes);
        if (pixelType != PixelType::Unknown)
            images.push_back({reader.Position(), width, height, pixelType});
    }

    StreamReader& reader;
};

} // namespace

bool RawImageEmi::Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex)
{
    fileType = FileType::Emi;
    readMode = mode;
    software = WidenText(writerName);

    StreamReader reader{stream};
    const auto stamp = reader.ReadNumber<uint16_t>(order);
    if (!stamp)
        return false;
    if (*stamp != fileStamp)
        return log.Fail(L"Invalid stamp");
    const auto version = reader.ReadNumber<uint16_t>(order);
    if (!version)
        return false;
    if (*version > highestVersion)
        return log.Fail(L"Too high version number");

    ItemWalk walk{reader};
    if (reader.GoTo(firstItemOffset))
        walk.Run();
    software = WidenText(walk.writer);
    if (walk.needsNewerWriter)
        formatDetails = L"Requires Pellox 4.15.0.2311 or later";

    frameCount = static_cast<uint32_t>(walk.images.size());
    if (frameCount == 0)
        return log.Fail(L"No images found");
    if (frameIndex >= frameCount)
        return log.Fail(L"Frame index is out of range");
    flipVertical = true;
    const ArrayImage& image = walk.images[frameIndex];
    width = image.width;
    height = image.height;
    pixelType = image.pixelType;
    return ConvertToDisplay(stream, streamSize, image.samplesOffset);
}

} // namespace Tav::Imaging::RawImage
