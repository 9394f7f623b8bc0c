#include "core/DisplayScaling.h"

#include "core/DynamicRangeCalculator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace Tav::Imaging::RawImage {

namespace {

constexpr double full16Bit = 65535.0;
constexpr double full32Bit = 4294967295.0;
constexpr double twoTo32 = 4294967296.0;

/// Whole part of the value modulo 2^32, as mathematics has it; 0 for infinities and NaN.
uint32_t WholePartModulo32Bit(double value) noexcept
{
    if (!std::isfinite(value))
        return 0;
    const double remainder = std::fmod(std::trunc(value), twoTo32);
    return static_cast<uint32_t>(remainder < 0 ? remainder + twoTo32 : remainder);
}

/// Truncates a value of at most 2^32 - 1; NaN and negative values give 0.
uint32_t TruncateToUInt32(double value) noexcept
{
    return value > 0 ? static_cast<uint32_t>(static_cast<uint64_t>(value)) : 0;
}

/// The display byte of a sample's distance from the low end; `step` is the distance per gray level.
/// NaN, the distance 0 in an empty range, is black.
uint8_t DisplayByte(double distance, double step) noexcept
{
    const double level = distance / step;
    if (level > 255.0)
        return 255;
    return level >= 0 ? static_cast<uint8_t>(level) : uint8_t{0};
}

} // namespace

void RescaleToUInt32(const Image<double>& source, Image<unsigned int>& target)
{
    const double range = source.maximum - source.minimum;
    const bool needs32Bit = source.force32Bit || WholePartModulo32Bit(range) > 65535;
    const double full = needs32Bit ? full32Bit : full16Bit;
    const double scale = full / range;
    const double highest = scale * range;

    target.width = source.width;
    target.height = source.height;
    target.minimum = 0;
    target.maximum = std::isfinite(highest) ? TruncateToUInt32(highest) : 0;
    target.samples.resize(source.samples.size());
    std::transform(source.samples.begin(), source.samples.end(), target.samples.begin(),
                   [minimum = source.minimum, scale, full](double sample) {
                       const double scaled = (sample - minimum) * scale;
                       return TruncateToUInt32(scaled > full ? full : scaled);
                   });
}

void ScaleToDisplayBytes(const Image<unsigned int>& source, std::vector<uint8_t>& bytes, bool flip)
{
    if (source.samples.empty())
        throw std::invalid_argument("The object is empty !");

    const double low = source.minimum;
    const double step = (source.maximum - source.minimum) / 255.0;
    bytes.resize(source.samples.size());
    for (size_t row = 0; row < source.height; ++row)
    {
        const size_t sourceRow = flip ? source.height - 1 - row : row;
        const uint32_t* samples = source.samples.data() + sourceRow * source.width;
        uint8_t* target = bytes.data() + row * source.width;
        for (size_t column = 0; column < source.width; ++column)
            target[column] = DisplayByte(samples[column] - low, step);
    }
}

void ScaleByDynamicRange(Image<unsigned int>& image, std::vector<uint8_t>& bytes, bool flip)
{
    DynamicRangeCalculator calculator{image.minimum, image.maximum};
    calculator.ComputeRange(image);
    image.minimum = calculator.low;
    image.maximum = calculator.high;
    ScaleToDisplayBytes(image, bytes, flip);
}

void StretchContrast(std::vector<uint8_t>& picture, size_t pixelCount)
{
    if (picture.empty() || picture.size() != pixelCount)
        return;

    constexpr double threshold = 0.99;
    std::array<uint32_t, 256> counts = {};
    for (const uint8_t level : picture)
        ++counts[level];
    std::array<double, 256> shares = {};
    std::transform(counts.begin(), counts.end(), shares.begin(),
                   [pixelCount](uint32_t count) { return count / static_cast<double>(pixelCount); });

    // As in the wide histograms, the dark end lands one level below its bin and bin 0 is never added.
    int low = 0;
    double sum = 0;
    for (int level = 255; level > 0; --level)
    {
        sum += shares[static_cast<size_t>(level)];
        if (sum > threshold)
        {
            low = level - 1;
            break;
        }
    }
    int high = 255;
    sum = 0;
    for (int level = 0; level < 256; ++level)
    {
        sum += shares[static_cast<size_t>(level)];
        if (sum > threshold)
        {
            high = level;
            break;
        }
    }
    if (high - low == 255 || high <= low)
        return;

    const double factor = 255.0 / (high - low);
    std::array<uint8_t, 256> stretched = {};
    for (int level = 0; level < 256; ++level)
    {
        const double value = (level - low) * factor;
        stretched[static_cast<size_t>(level)] =
            static_cast<uint8_t>(value < 0 ? 0 : (value > 255.0 ? 255 : value));
    }
    std::transform(picture.begin(), picture.end(), picture.begin(),
                   [&stretched](uint8_t level) { return stretched[level]; });
}

} // namespace Tav::Imaging::RawImage
