#include "Micrograph.h"

#include <algorithm>
#include <cstddef>
#include <random>

using namespace Tav::Imaging::RawImage;

namespace {

template <typename Sample>
void AppendSample(std::vector<uint8_t>& bytes, double value)
{
    const auto sample = static_cast<Sample>(value);
    const auto* const begin = reinterpret_cast<const uint8_t*>(&sample);
    bytes.insert(bytes.end(), begin, begin + sizeof(sample));
}

} // namespace

std::vector<uint8_t> MicrographFrame(PixelType type, uint32_t edge)
{
    std::mt19937 random{20140};
    std::normal_distribution<double> noise{0, 6};
    std::vector<uint8_t> bytes;
    bytes.reserve(size_t{BytesPerPixel(type)} * edge * edge);
    for (uint32_t y = 0; y < edge; ++y)
    {
        for (uint32_t x = 0; x < edge; ++x)
        {
            const double spot = x % 512 < 16 && y % 512 < 16 ? 60 : 0;
            const double level =
                std::clamp(80.0 + 40.0 * (x + y) / (2.0 * edge) + spot + noise(random), 0.0, 255.0);
            switch (type)
            {
            case PixelType::UInt4:
            case PixelType::UInt8:
                AppendSample<uint8_t>(bytes, level);
                break;
            case PixelType::Int8:
                AppendSample<int8_t>(bytes, level - 128);
                break;
            case PixelType::UInt16:
                AppendSample<uint16_t>(bytes, 30 * level);
                break;
            case PixelType::Int16:
                AppendSample<int16_t>(bytes, 30 * level - 2000);
                break;
            case PixelType::UInt32:
                AppendSample<uint32_t>(bytes, 3000 * level);
                break;
            case PixelType::Int32:
                AppendSample<int32_t>(bytes, 3000 * level - 200000);
                break;
            case PixelType::Float16:
                AppendSample<uint16_t>(bytes, 0x4000 + 8 * level);
                break;
            case PixelType::Float32:
                AppendSample<float>(bytes, level - 100);
                break;
            case PixelType::Double64:
                AppendSample<double>(bytes, level - 100);
                break;
            case PixelType::Complex64:
                AppendSample<float>(bytes, level);
                AppendSample<float>(bytes, 0.5 * level);
                break;
            case PixelType::Complex128:
                AppendSample<double>(bytes, level);
                AppendSample<double>(bytes, 0.5 * level);
                break;
            default: // colours
                for (uint32_t channel = 0; channel < BytesPerPixel(type); ++channel)
                    AppendSample<uint8_t>(bytes, level);
                break;
            }
        }
    }
    return bytes;
}
