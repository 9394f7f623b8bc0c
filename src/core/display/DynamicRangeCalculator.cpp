#include "core/display/DynamicRangeCalculator.h"

#include "core/Diagnostics.h"
#include "core/samples/Vectorised.h"

#include <optional>
#include <span>
#include <vector>

namespace Tav::Imaging::RawImage {

namespace {

constexpr uint32_t widestDisplayRange = 65535;

constexpr uint32_t coarseBinShift = 14;
constexpr uint32_t coarseBinWidth = 1u << coarseBinShift;

/// Counts each sample's distance from `base` that is below `bins`.
std::vector<uint32_t> CountSamples(const Image<unsigned int>& image, uint32_t base, uint32_t bins)
{
    // One bin more takes what lies outside, so that no sample needs a branch.
    std::vector<uint32_t> counts(size_t{bins} + 1);
    ForEachBlock(image, [&](size_t, std::span<unsigned int> block) {
        Vectorised([=, samples = block.data(), count = block.size()] {
            for (size_t i = 0; i < count; ++i)
            {
                const uint32_t distance = samples[i] - base;
                samples[i] = distance < bins ? distance : bins;
            }
        });
        for (const unsigned int bin : block)
            ++counts[bin];
    });
    counts.pop_back();
    return counts;
}

/// Counts every `step`-th sample's distance from `base` in bins of the coarse width.
std::vector<uint32_t> CountCoarsely(const Image<unsigned int>& image, uint32_t base, size_t step)
{
    // As many bins as any distance can have, so that no sample needs a bounds check.
    std::vector<uint32_t> counts(size_t{1} << (32 - coarseBinShift));
    const size_t visited = (image.SampleCount() + step - 1) / step;
    ForEachBlock(image, 0, step, visited, [&](size_t, std::span<const unsigned int> block) {
        for (const unsigned int sample : block)
            ++counts[(sample - base) >> coarseBinShift];
    });
    counts.resize(((image.maximum - base) >> coarseBinShift) + 1);
    return counts;
}

/// A histogram bin that is not empty, and its share of all samples.
struct Share
{
    uint32_t bin;
    double share;
};

/// The shares of the bins that are not empty, in order; the empty ones would add nothing to any sum.
std::vector<Share> SharesOf(std::span<const uint32_t> counts, size_t total)
{
    std::vector<Share> shares;
    for (size_t bin = 0; bin < counts.size(); ++bin)
    {
        if (counts[bin] != 0)
            shares.push_back({static_cast<uint32_t>(bin), counts[bin] / static_cast<double>(total)});
    }
    return shares;
}

/// The bin at which the sum of the shares from `first` to `last` first exceeds the threshold.
template <typename Iterator>
std::optional<uint32_t> Crossing(Iterator first, Iterator last, double threshold)
{
    double sum = 0;
    for (; first != last; ++first)
    {
        sum += first->share;
        if (sum > threshold)
            return first->bin;
    }
    return std::nullopt;
}

std::optional<uint32_t> CrossingFromBottom(const std::vector<Share>& shares, double threshold)
{
    return Crossing(shares.begin(), shares.end(), threshold);
}

/// From the top down to bin 1: bin 0 is never added.
std::optional<uint32_t> CrossingFromTop(const std::vector<Share>& shares, double threshold)
{
    const bool beginsWithBin0 = !shares.empty() && shares.front().bin == 0;
    return Crossing(shares.rbegin(), shares.rend() - (beginsWithBin0 ? 1 : 0), threshold);
}

/// Visiting every sample of a large frame would not change a bin 16384 values wide.
size_t CoarseStep(size_t sampleCount) noexcept
{
    if (sampleCount >= 0x1000000)
        return 16;
    return sampleCount >= 0x400000 ? 4 : 1;
}

} // namespace

void DynamicRangeCalculator::ComputeRange(const Image<unsigned int>& image)
{
    if (image.maximum - image.minimum > widestExactRange)
        ComputeCoarseRange(image);
    else
        ComputeExactRange(image);
}

void DynamicRangeCalculator::ComputeExactRange(const Image<unsigned int>& image)
{
    ComputeExactRange(CountSamples(image, low, high - low + 1), image.SampleCount(), image.minimum,
                      image.maximum);
}

void DynamicRangeCalculator::ComputeExactRange(std::span<const uint32_t> counts, size_t sampleCount,
                                               uint32_t imageLow, uint32_t imageHigh)
{
    const uint32_t base = low;
    const std::vector<Share> shares = SharesOf(counts, sampleCount);

    for (const double threshold : {0.999, 0.99, 0.95, 0.9})
    {
        // The dark end lands one value below its bin, the bright end on its bin.
        if (const auto bin = CrossingFromTop(shares, threshold))
            low = base + *bin - 1;
        if (const auto bin = CrossingFromBottom(shares, threshold))
            high = base + *bin;
        if (high - low <= widestDisplayRange)
            break;
    }

    const bool isEmpty = high == low;
    // A high end below the low end counts as too wide.
    const bool isTooWide = high - low > widestDisplayRange;
    if (isEmpty)
        WriteDiagnostic(L"The found dynamic range is zero");
    else if (isTooWide)
        WriteDiagnostic(L"The found dynamic range is larger than 64k");
    if (isEmpty || isTooWide)
    {
        low = imageLow;
        high = imageHigh;
    }
}

void DynamicRangeCalculator::ComputeCoarseRange(const Image<unsigned int>& image)
{
    constexpr double threshold = 0.98;
    const uint32_t base = image.minimum;
    const size_t step = CoarseStep(image.SampleCount());
    // The part that is left over when the step does not divide the samples is visited, but not in the total.
    const size_t total = image.SampleCount() / step;
    const std::vector<Share> shares = SharesOf(CountCoarsely(image, base, step), total);
    if (const auto bin = CrossingFromTop(shares, threshold))
        low = base + *bin * coarseBinWidth;
    if (const auto bin = CrossingFromBottom(shares, threshold))
        high = base + *bin * coarseBinWidth + (coarseBinWidth - 1);

    if (high - low <= widestExactRange)
        ComputeExactRange(image);
    else
        WriteDiagnostic(L"The dynamic range is too high for calculating the exact histogram");
}

} // namespace Tav::Imaging::RawImage
