#include "core/display/DisplayScaling.h"

#include "core/display/DynamicRangeCalculator.h"
#include "core/display/InterleavedHistogram.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace Tav::Imaging::RawImage {

DistanceImage::DistanceImage(const Image<int>& signedSource) noexcept
    : Image(signedSource.width, signedSource.height), source(signedSource)
{
    maximum = static_cast<uint32_t>(source.maximum) - static_cast<uint32_t>(source.minimum);
}

void DistanceImage::Load(size_t first, std::span<unsigned int> block) const
{
    const auto smallest = static_cast<uint32_t>(source.minimum);
    ForEachBlock(source, first, first + block.size(), [&](size_t begin, std::span<const int> samples) {
        unsigned int* const target = block.data() + (begin - first);
        for (size_t i = 0; i < samples.size(); ++i)
            target[i] = static_cast<uint32_t>(samples[i]) - smallest;
    });
}

void ScaleToDisplayBytes(const Image<unsigned int>& source, std::vector<uint8_t>& bytes, bool flip)
{
    const size_t count = source.SampleCount();
    if (count == 0)
        throw std::invalid_argument("The object is empty !");

    const DisplayScale scale{source.minimum, source.maximum};
    bytes.resize(count);
    for (size_t row = 0; row < source.height; ++row)
    {
        const size_t begin = row * source.width;
        uint8_t* const target = bytes.data() + (flip ? source.height - 1 - row : row) * source.width;
        ForEachBlock(source, begin, begin + source.width,
                     [&](size_t first, std::span<const unsigned int> block) {
                         for (size_t i = 0; i < block.size(); ++i)
                             target[first - begin + i] = scale(block[i]);
                     });
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
    CountInterleaved<8>(counts, picture.size(), [&picture](size_t pixel) { return picture[pixel]; });
    std::array<double, 256> shares = {};
    std::transform(counts.begin(), counts.end(), shares.begin(),
                   [pixelCount](uint32_t count) { return count / static_cast<double>(pixelCount); });

    // As in the wide histograms, the dark end is one level below its bin, and bin 0 is never added.
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
