#include "core/RawImageBase.h"

#include "core/Diagnostics.h"
#include "core/display/FrameConversion.h"
#include "core/stream/StreamReader.h"

#include <cstring>
#include <limits>
#include <utility>

namespace Tav::Imaging::RawImage {

bool RawImageBase::ConvertToDisplay(IStream* stream, uint64_t streamSize, uint64_t dataOffset)
{
    if (readMode == readModeHeader)
        return true;
    if (width == 0 || height == 0 || width >= 65536 || height >= 65536)
    {
        WriteDiagnostic(L"Invalid resolution");
        return false;
    }
    if (byteOrder == ByteOrder::BigEndian)
        WriteDiagnostic(L"Big endian byte ordering");
    if (BytesPerPixel(pixelType) == 0)
        return false;

    FrameBytes frame;
    if (!ReadFramePixels(frame, stream, streamSize, dataOffset))
    {
        WriteDiagnostic(L"Failed to read the image data into memory");
        return false;
    }
    ConvertFrame(*this, std::move(frame));
    return true;
}

namespace {

/// Writes the samples of the first frameBytes stored bytes one behind the other. A layout that reaches beyond
/// these bytes wraps to their start.
void GatherSamples(const uint8_t* stored, uint64_t frameBytes, const RawImageBase& image,
                   uint64_t sampleBytes, uint8_t* target)
{
    const uint64_t rowBytes = sampleBytes * image.width;
    const uint64_t step = image.xStride % frameBytes;
    uint64_t rowBegin = 0;
    for (uint64_t y = 0; y < image.height; ++y)
    {
        if (image.xStride == sampleBytes && rowBytes <= frameBytes - rowBegin)
        {
            std::memcpy(target, stored + rowBegin, rowBytes);
            target += rowBytes;
        }
        else
        {
            uint64_t position = rowBegin;
            for (uint64_t x = 0; x < image.width; ++x)
            {
                for (uint64_t byte = 0; byte < sampleBytes; ++byte)
                {
                    const uint64_t place = position + byte;
                    *target++ = stored[place < frameBytes ? place : place % frameBytes];
                }
                position += step;
                position -= position < frameBytes ? 0 : frameBytes;
            }
        }
        rowBegin = (rowBegin + image.yStride) % frameBytes;
    }
}

} // namespace

bool RawImageBase::ReadFramePixels(FrameBytes& samples, IStream* stream, uint64_t streamSize,
                                   uint64_t dataOffset) const
{
    const uint64_t sampleBytes = BytesPerPixel(pixelType);
    const uint64_t frameBytes = sampleBytes * width * height;
    const bool isPacked = xStride == 0 && yStride == 0;

    uint64_t bytesToRead = pixelType == PixelType::UInt4 ? frameBytes / 2 : frameBytes;
    if (!isPacked)
    {
        // All bytes up to the end of the stream, in 32-bit arithmetic. They must hold a frame.
        bytesToRead = static_cast<uint32_t>(streamSize - dataOffset);
        if (bytesToRead < frameBytes)
            return false;
    }
    if (bytesToRead > std::numeric_limits<uint32_t>::max() || dataOffset > streamSize ||
        bytesToRead > streamSize - dataOffset)
        return false;

    if (samples.size() < bytesToRead)
        samples = FrameBytes(bytesToRead);
    if (!ReadStreamAt(stream, dataOffset, samples.data(), static_cast<uint32_t>(bytesToRead)))
        return false;
    if (isPacked || frameBytes == 0)
        return true;

    const FrameBytes stored{std::span<const uint8_t>(samples.data(), frameBytes)};
    GatherSamples(stored.data(), frameBytes, *this, sampleBytes, samples.data());
    return true;
}

} // namespace Tav::Imaging::RawImage
