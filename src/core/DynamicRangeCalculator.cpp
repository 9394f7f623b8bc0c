#include "core/DynamicRangeCalculator.h"

#include "core/Diagnostics.h"

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
    ForEachBlock(image, 0, image.SampleCount(), [&](size_t, std::span<unsigned int> block) {
        for (unsigned int& sample : block)
        {
            const uint32_t distance = sample - base;
            sample = distance < bins ? distance : bins;
        }
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
    static_assert(blockSamples % 16 == 0, "a block begins with a sample that is visited");
    ForEachBlock(image, 0, image.SampleCount(), [&](size_t, std::span<const unsigned int> block) {
        for (size_t i = 0; i < block.size(); i += step)
            ++counts[(block[i] - base) >> coarseBinShift];
    });
    counts.resize(((image.maximum - base) >> coarseBinShift) + 1);
    return counts;
}

std::vector<double> SharesOf(const std::vector<uint32_t>& counts, double total)
{
    std::vector<double> shares;
    shares.reserve(counts.size());
    for (const uint32_t count : counts)
        shares.push_back(count / total);
    return shares;
}

/// The bin at which the sum from the top first exceeds the threshold; 0, which is never added, when none.
size_t CrossingFromTop(const std::vector<double>& shares, double threshold)
{
    double sum = 0;
    for (size_t bin = shares.size(); bin-- > 1;)
    {
        sum += shares[bin];
        if (sum > threshold)
            return bin;
    }
    return 0;
}

/// The bin at which the sum from the bottom first exceeds the threshold; the number of bins when none.
size_t CrossingFromBottom(const std::vector<double>& shares, double threshold)
{
    double sum = 0;
    for (size_t bin = 0; bin < shares.size(); ++bin)
    {
        sum += shares[bin];
        if (sum > threshold)
            return bin;
    }
    return shares.size();
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

void DynamicRangeCalculator::ComputeExactRange(const std::vector<uint32_t>& counts, size_t sampleCount,
                                               uint32_t imageLow, uint32_t imageHigh)
{
    const uint32_t base = low;
    const std::vector<double> shares = SharesOf(counts, static_cast<double>(sampleCount));

    for (const double threshold : {0.999, 0.99, 0.95, 0.9})
    {
        // The dark end lands one value below its bin, the bright end on its bin.
        if (const size_t bin = CrossingFromTop(shares, threshold); bin > 0)
            low = base + static_cast<uint32_t>(bin) - 1;
        if (const size_t bin = CrossingFromBottom(shares, threshold); bin < shares.size())
            high = base + static_cast<uint32_t>(bin);
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
    const std::vector<double> shares = SharesOf(CountCoarsely(image, base, step), static_cast<double>(total));
    if (const size_t bin = CrossingFromTop(shares, threshold); bin > 0)
        low = base + static_cast<uint32_t>(bin) * coarseBinWidth;
    if (const size_t bin = CrossingFromBottom(shares, threshold); bin < shares.size())
        high = base + static_cast<uint32_t>(bin) * coarseBinWidth + (coarseBinWidth - 1);

    if (high - low <= widestExactRange)
        ComputeExactRange(image);
    else
        WriteDiagnostic(L"The dynamic range is too high for calculating the exact histogram");
}

} // namespace Tav::Imaging::RawImage
