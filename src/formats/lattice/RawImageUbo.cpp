#include "formats/lattice/RawImageUbo.h"

#include "core/Diagnostics.h"
#include "core/stream/StreamReader.h"
#include "formats/lattice/UboHeaderParser.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace Tav::Imaging::RawImage {

namespace {

constexpr ReaderLog log{L"UBO: "};

constexpr size_t longestHeader = 0x3FFFF;

/// The file's first bytes as text. Zero bytes count as spaces.
std::optional<std::string> ReadHeaderText(StreamReader& reader, uint64_t streamSize)
{
    const auto bytes = reader.ReadBytes(static_cast<size_t>(std::min<uint64_t>(streamSize, longestHeader)));
    if (!bytes)
        return std::nullopt;
    std::string text(bytes->begin(), bytes->end());
    std::ranges::transform(text, text.begin(), [](char byte) { return byte == 0 ? ' ' : byte; });
    return text;
}

/// The slice that a frame shows: the middle one first, then all of them in order.
uint64_t SliceOfFrame(uint32_t frameIndex, uint32_t slices) noexcept
{
    if (slices <= 2)
        return frameIndex;
    return frameIndex == 0 ? slices / 2 : frameIndex - 1;
}

} // namespace

bool RawImageUbo::Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex)
{
    StreamReader reader{stream};
    fileType = FileType::VornaMesh;
    readMode = mode;
    software = L"Vorna";

    const auto text = ReadHeaderText(reader, streamSize);
    if (!text)
        return false;
    if (text->size() > 3 && (*text)[3] == 'e')
    {
        fileType = FileType::PelixMesh;
        software = L"Pelix";
    }

    UboHeaderParser header;
    if (!header.Parse(*text))
        return log.Fail(L"Unsupported header format");
    width = header.dimensionX;
    height = header.dimensionY;
    const uint32_t slices = header.dimensionZ;
    frameCount = slices;
    if (width == 0 || height == 0 || slices == 0)
        return log.Fail(L"No valid image dimensions found");
    pixelType = header.sampleType;
    if (pixelType == PixelType::Unknown)
        return log.Fail(L"Unsupported pixel type");
    if (header.isCompressed)
        return log.Fail(L"Data compression is not supported");

    if (slices > 2 && slices < std::numeric_limits<uint32_t>::max())
        ++frameCount;
    if (frameIndex >= frameCount)
        return log.Fail(L"Frame index is out of range");
    // The products exceed 64 bits only for slices that are too large to be read.
    const uint64_t sliceBytes = uint64_t{width} * height * BytesPerPixel(pixelType);
    return ConvertToDisplay(stream, streamSize,
                            header.dataOffset + SliceOfFrame(frameIndex, slices) * sliceBytes);
}

} // namespace Tav::Imaging::RawImage
