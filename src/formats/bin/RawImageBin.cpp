#include "formats/bin/RawImageBin.h"

#include "core/Diagnostics.h"
#include "core/stream/StreamReader.h"

#include <array>
#include <string_view>

namespace Tav::Imaging::RawImage {

namespace {

constexpr ByteOrder order = ByteOrder::LittleEndian;
constexpr uint64_t shortHeaderBytes = 10;

bool Fail(std::wstring_view message) noexcept
{
    WriteDiagnostic(L"BIN: ", message);
    return false;
}

PixelType PixelTypeOfCode(uint16_t code) noexcept
{
    constexpr std::array<PixelType, 9> types = {
        PixelType::Unknown, PixelType::UInt8, PixelType::UInt16,  PixelType::UInt32,   PixelType::Int8,
        PixelType::Int16,   PixelType::Int32, PixelType::Float32, PixelType::Double64,
    };
    return code < types.size() ? types[code] : PixelType::Unknown;
}

} // namespace

bool RawImageBin::Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex)
{
    fileType = FileType::Bin;
    readMode = mode;

    StreamReader reader{stream};
    const auto typeCode = reader.ReadNumber<uint16_t>(order);
    if (!typeCode)
        return false;
    pixelType = PixelTypeOfCode(*typeCode);
    if (pixelType == PixelType::Unknown)
        return Fail(L"Unsupported pixel type");
    const auto columns = reader.ReadNumber<uint32_t>(order);
    const auto rows = reader.ReadNumber<uint32_t>(order);
    if (!columns || !rows)
        return false;
    width = *columns;
    height = *rows;
    frameCount = 1;
    if (frameIndex != 0)
        return Fail(L"Invalid frame index");

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
        return Fail(L"File size does not match with the image properties in the header");
    return ConvertToDisplay(stream, streamSize, dataOffset);
}

} // namespace Tav::Imaging::RawImage
