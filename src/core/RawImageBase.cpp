#include "core/RawImageBase.h"

#include "core/Diagnostics.h"
#include "core/display/FrameConversion.h"
#include "core/stream/StreamReader.h"

#include <limits>

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

    std::vector<uint8_t> frame;
    if (!ReadFramePixels(frame, stream, streamSize, dataOffset))
    {
        WriteDiagnostic(L"Failed to read the image data into memory");
        return false;
    }
    ConvertFrame(*this, frame);
    return true;
}

bool RawImageBase::ReadFramePixels(std::vector<uint8_t>& samples, IStream* stream, uint64_t streamSize,
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
        samples.resize(bytesToRead);
    if (!ReadStreamAt(stream, dataOffset, samples.data(), static_cast<uint32_t>(bytesToRead)))
        return false;
    if (isPacked || frameBytes == 0)
        return true;

    const std::vector<uint8_t> stored(samples.begin(),
                                      samples.begin() + static_cast<std::ptrdiff_t>(frameBytes));
    auto target = samples.begin();
    for (uint64_t y = 0; y < height; ++y)
    {
        for (uint64_t x = 0; x < width; ++x)
        {
            // A layout that reaches beyond the first frameBytes bytes wraps to their start.
            const uint64_t position = (x * xStride + y * yStride) % frameBytes;
            for (uint64_t byte = 0; byte < sampleBytes; ++byte)
                *target++ = stored[(position + byte) % frameBytes];
        }
    }
    return true;
}

} // namespace Tav::Imaging::RawImage
