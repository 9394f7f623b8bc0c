#include "support/display/VariedSamples.h"

#include "support/ByteWriter.h"

#include <utility>

using namespace Tav::Imaging::RawImage;

Bytes VariedSamples(PixelType type, size_t count)
{
    // Multiples of an odd number near 2^32 divided by the golden ratio fall evenly, in no visible order.
    uint32_t spread = 0;
    const auto next = [&spread] { return static_cast<int32_t>(spread += 0x9E3779B1); };
    const auto nextSingle = [&next] { return static_cast<float>(next()) / 1000; };
    const auto nextDouble = [&next] { return static_cast<double>(next()) / 1000; };

    ByteWriter writer;
    for (size_t i = 0; i < count; ++i)
        switch (type)
        {
        case PixelType::Float32:
            writer.Put(nextSingle());
            break;
        case PixelType::Double64:
            writer.Put(nextDouble());
            break;
        case PixelType::Complex64:
            writer.Put(nextSingle()).Put(nextSingle());
            break;
        case PixelType::Complex128:
            writer.Put(nextDouble()).Put(nextDouble());
            break;
        default:
            for (uint32_t byte = 0; byte < BytesPerPixel(type); ++byte)
                writer.Put(static_cast<uint8_t>(next() >> 24));
        }
    return std::move(writer.bytes);
}
