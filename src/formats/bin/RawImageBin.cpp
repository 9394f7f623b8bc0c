#include "formats/bin/RawImageBin.h"

#include "core/Diagnostics.h"
#include "core/stream/StreamReader.h"
#include "formats/bin/BinTypes.h"

#include <string_view>

namespace Tav::Imaging::RawImage {

namespace {

constexpr ReaderLog log{L"BIN: "};

constexpr ByteOrder order = ByteOrder::LittleEndian;
constexpr uint64_t shortHeaderBytes = 10;

} // namespace

bool RawImageBin::Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex)
{
    fileType = FileType::Bin;
    readMode = mode;

    StreamReader reader{stream};
    const auto typeCode = reader.ReadNumber<uint16_t>(order);
    if (!typeCode)
        return false;
    pixelType = PixelTypeOf(binTypes, *typeCode);
    if (pixelType == PixelType::Unknown)
        return log.Fail(L"Unsupported pixel type");
    const auto columns = reader.ReadNumber<uint32_t>(order);
    const auto rows = reader.ReadNumber<uint32_t>(order);
    if (!columns || !rows)
        return false;
    width = *columns;
    height = *rows;
    frameCount = 1;
    if (frameIndex != 0)
        return log.Fail(L"Invalid frame index");

    const uint64_t frameBytes = uint64_t{width} * height * BytesPerPixel(pixelType);
    const auto headerBytes = reader.ReadNumber<uint32_t>(order);
    if (!headerBytes)
        return false;
    uint64_t dataOffset = shortHeaderBytes;
    if (streamSize == *headerBytes + frameBytes)
    {
        fileType = FileType::BinWithDataOffset;
        dataOffset = *headerBytes;
    }
    if (streamSize != dataOffset + frameBytes)
        return log.Fail(L"File size does not match with the image properties in the header");
    return ConvertToDisplay(stream, streamSize, dataOffset);
}

} // namespace Tav::Imaging::RawImage
