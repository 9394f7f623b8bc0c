#include "formats/RawImageRaw.h"

#include "core/Diagnostics.h"
#include "core/stream/StreamReader.h"

#include <optional>
#include <string_view>

namespace Tav::Imaging::RawImage {

namespace {

constexpr ReaderLog log{L"RAW: "};

constexpr ByteOrder order = ByteOrder::LittleEndian;
constexpr uint64_t signatureBytes = 17;
constexpr uint32_t headerBytes = 49;

struct SampleKind
{
    uint32_t kind; // 0 unsigned, 1 signed, 2 floating point, 3 RGB
    uint32_t sampleBytes;
    PixelType pixelType;
};

constexpr SampleKind sampleKinds[] = {
    {0, 1, PixelType::UInt8},   {0, 2, PixelType::UInt16},   {0, 4, PixelType::UInt32},
    {1, 1, PixelType::Int8},    {1, 2, PixelType::Int16},    {1, 4, PixelType::Int32},
    {2, 4, PixelType::Float32}, {2, 8, PixelType::Double64}, {3, 3, PixelType::RGB24},
};

PixelType PixelTypeOf(uint32_t kind, uint32_t sampleBytes) noexcept
{
    for (const SampleKind& row : sampleKinds)
    {
        if (row.kind == kind && row.sampleBytes == sampleBytes)
            return row.pixelType;
    }
    return PixelType::Unknown;
}

/// The sample size with which a packed frame fills the file, for writers that store only the number of
/// significant bits; nothing if no size does.
std::optional<uint32_t> SampleBytesFromFileSize(uint64_t streamSize, uint32_t pixelCount) noexcept
{
    const uint64_t frameBytes = streamSize - headerBytes;
    if (pixelCount == 0 || frameBytes % pixelCount != 0)
        return std::nullopt;
    const uint64_t sampleBytes = frameBytes / pixelCount;
    if (sampleBytes != 1 && sampleBytes != 2 && sampleBytes != 4 && sampleBytes != 8)
        return std::nullopt;
    return static_cast<uint32_t>(sampleBytes);
}

} // namespace

bool RawImageRaw::Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex)
{
    fileType = FileType::Raw;
    readMode = mode;

    StreamReader reader{stream};
    if (!reader.GoTo(signatureBytes))
        return false;
    const auto columns = reader.ReadNumber<uint32_t>(order);
    const auto rows = reader.ReadNumber<uint32_t>(order);
    const auto unused = reader.ReadNumber<uint32_t>(order);
    if (!columns || !rows || !unused)
        return false;
    width = *columns;
    height = *rows;
    frameCount = 1;
    if (frameIndex != 0)
        return log.Fail(L"Invalid frame index");

    const auto bitsPerPixel = reader.ReadNumber<uint32_t>(order);
    if (!bitsPerPixel)
        return false;
    uint32_t sampleBytes = *bitsPerPixel / 8;
    if (*bitsPerPixel % 8 != 0)
    {
        // The product wraps at 32 bits.
        const auto derived = SampleBytesFromFileSize(streamSize, width * height);
        if (!derived)
            return log.Fail(L"Invalid pixel type (not a multiple of 8-bits)");
        log.Write(L"The bits per pixel in the file header is not correct");
        sampleBytes = *derived;
    }

    const auto kind = reader.ReadNumber<uint32_t>(order);
    const auto dataOffset = reader.ReadNumber<uint32_t>(order);
    const auto columnStride = reader.ReadNumber<uint32_t>(order);
    const auto rowStride = reader.ReadNumber<uint32_t>(order);
    if (!kind || !dataOffset || !columnStride || !rowStride)
        return false;
    xStride = *columnStride;
    yStride = *rowStride;
    pixelType = PixelTypeOf(*kind, sampleBytes);
    if (pixelType == PixelType::Unknown)
        return log.Fail(L"Unsupported pixel type");
    // The offset counts from the end of the header and wraps at 32 bits.
    return ConvertToDisplay(stream, streamSize, static_cast<uint32_t>(*dataOffset + headerBytes));
}

} // namespace Tav::Imaging::RawImage
