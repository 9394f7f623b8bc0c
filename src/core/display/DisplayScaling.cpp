#include "core/display/DisplayScaling.h"

#include "core/display/BytePasses.h"
#include "core/display/DisplayMap.h"
#include "core/display/DynamicRangeCalculator.h"
#include "core/display/Histogram.h"
#include "core/samples/Vectorised.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

/// Gives the bytes of a DisplayScale with a product, which takes a fraction of a division's time.
class DisplayProduct
{
public:
    DisplayProduct(uint32_t rangeLow, double scaleFactor) noexcept
        : low(rangeLow), movedLow(rangeLow - 2147483648.0), factor(scaleFactor)
    {}

    [[nodiscard]] uint8_t operator()(uint32_t sample) const noexcept
    {
        // Processors convert signed numbers only, so samples and low end are moved down by half the range.
        const auto moved = static_cast<int32_t>(std::max(sample, low) ^ 0x80000000);
        const double level = (moved - movedLow) * factor;
        return static_cast<uint8_t>(static_cast<int32_t>(level < 255.0 ? level : 255.0));
    }

private:
    uint32_t low;
    double movedLow;
    double factor;
};

} // namespace

double DisplayScale::Factor() const noexcept
{
    if (step == 0)
        return 0;
    // The reciprocal is rounded, and one of its neighbours may give the quotients where it does not.
    const double nearest = 1 / step;
    for (const double factor : {nearest, std::nextafter(nearest, 2 * nearest), std::nextafter(nearest, 0.0)})
    {
        if (IsFactor(factor))
            return factor;
    }
    return 0;
}

/// Neither quotient nor product falls when the distance rises. So they agree on all samples if every level
/// begins at the same distance.
bool DisplayScale::IsFactor(double factor) const noexcept
{
    for (int level = 1; level <= 255; ++level)
    {
        double begin = std::ceil(level * step);
        if (begin / step < level)
            begin += 1;
        else if ((begin - 1) / step >= level)
            begin -= 1;
        if (begin * factor < level || (begin - 1) * factor >= level)
            return false;
    }
    return true;
}

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
    const auto replace = [&](const auto& byteOf) {
        ForEachBlock(source, [&](size_t index, std::span<const unsigned int> block) {
            Vectorised([=, from = block.data(), to = bytes.data() + index, size = block.size()] {
                for (size_t i = 0; i < size; ++i)
                    to[i] = byteOf(from[i]);
            });
        });
    };
    const DisplayScale scale{low, high};
    if (const double factor = scale.Factor(); factor != 0)
        replace(DisplayProduct{low, factor});
    else
        replace(scale);
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
    const std::array<uint32_t, 256> counts = CountBytes(picture.data(), pixelCount);
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
