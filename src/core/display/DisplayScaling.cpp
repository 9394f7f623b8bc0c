#include "core/display/DisplayScaling.h"

#include "core/display/BytePasses.h"
#include "core/display/DisplayMap.h"
#include "core/display/DynamicRangeCalculator.h"
#include "core/display/Histogram.h"
#include "core/samples/Vectorised.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

// Beyond this, a table of display bytes would not be worth its making.
constexpr uint32_t widestMap = 0xFFFF;

} // namespace

DistanceImage::DistanceImage(const Image<int>& signedSource) noexcept
    : Image(signedSource.width, signedSource.height), source(signedSource)
{
    maximum = static_cast<uint32_t>(source.maximum) - static_cast<uint32_t>(source.minimum);
}

void DistanceImage::Load(size_t first, size_t step, std::span<unsigned int> block) const
{
    const auto smallest = static_cast<uint32_t>(source.minimum);
    ForEachBlock(source, first, step, block.size(), [&](size_t index, std::span<const int> samples) {
        Vectorised([=, from = samples.data(), to = block.data() + index, count = samples.size()] {
            for (size_t i = 0; i < count; ++i)
                to[i] = static_cast<uint32_t>(from[i]) - smallest;
        });
    });
}

void ScaleToDisplayBytes(const Image<unsigned int>& source, FrameBytes& bytes, bool flip)
{
    const size_t count = source.SampleCount();
    if (count == 0)
        throw std::invalid_argument("The object is empty !");

    if (bytes.size() < count)
        bytes = FrameBytes(count);
    const uint32_t low = source.minimum;
    const uint32_t high = source.maximum;
    if (low <= high && high - low < count && high - low <= widestMap)
    {
        const DisplayMap map = DisplayMap::OfRange(low, high);
        ForEachBlock(source, [&](size_t index, std::span<const unsigned int> block) {
            map.Replace<uint32_t>(reinterpret_cast<const uint8_t*>(block.data()), block.size(),
                                  bytes.data() + index);
        });
    }
    else
    {
        ForEachBlock(source, [&](size_t index, std::span<const unsigned int> block) {
            Vectorised([scale = DisplayScale{low, high}, from = block.data(), to = bytes.data() + index,
                        size = block.size()] {
                for (size_t i = 0; i < size; ++i)
                    to[i] = scale(from[i]);
            });
        });
    }
    bytes.Truncate(count);
    if (flip)
        FlipRows(bytes.data(), source.width, source.height);
}

void ScaleByDynamicRange(Image<unsigned int>& image, FrameBytes& bytes, bool flip)
{
    DynamicRangeCalculator calculator{image.minimum, image.maximum};
    calculator.ComputeRange(image);
    image.minimum = calculator.low;
    image.maximum = calculator.high;
    ScaleToDisplayBytes(image, bytes, flip);
}

void StretchContrast(FrameBytes& picture, size_t pixelCount)
{
    if (picture.empty() || picture.size() != pixelCount)
        return;

    constexpr double threshold = 0.99;
    Histogram<uint8_t> histogram{256, pixelCount};
    histogram.Add(picture.data(), pixelCount);
    const std::span<const uint32_t> counts = histogram.Sum();
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
    // The levels from low on, and one above high, from which on all are white.
    std::vector<uint8_t> stretched(static_cast<size_t>(high - low + 2), 255);
    for (int level = low; level <= high; ++level)
        stretched[static_cast<size_t>(level - low)] = static_cast<uint8_t>((level - low) * factor);
    const DisplayMap map(static_cast<uint32_t>(low), std::move(stretched));
    map.Replace<uint8_t>(picture.data(), pixelCount, picture.data());
}

} // namespace Tav::Imaging::RawImage
