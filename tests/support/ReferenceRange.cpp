#include "support/ReferenceRange.h"

namespace {

constexpr uint32_t coarseBinWidth = 16384;

/// Each bin's part of the whole.
std::vector<double> Shares(const std::vector<uint32_t>& counts, uint64_t whole)
{
    std::vector<double> shares;
    for (const uint32_t count : counts)
        shares.push_back(static_cast<double>(count) / static_cast<double>(whole));
    return shares;
}

} // namespace

ReferenceRange ReferenceExactRange(const SampledFrame& frame, uint32_t low, uint32_t high)
{
    ReferenceRange range{low, high, {}};
    const uint32_t base = low;
    const uint32_t last = high - low;

    std::vector<uint32_t> counts(size_t{last} + 1);
    for (const uint32_t sample : frame.samples)
    {
        const uint32_t bin = sample - base;
        if (bin <= last)
            ++counts[bin];
    }
    const std::vector<double> shares = Shares(counts, frame.samples.size());

    for (const double threshold : {0.999, 0.99, 0.95, 0.9})
    {
        double sum = 0;
        for (uint32_t bin = last; bin >= 1; --bin)
        {
            sum += shares[bin];
            if (sum > threshold)
            {
                range.low = base + bin - 1;
                break;
            }
        }
        sum = 0;
        for (uint32_t bin = 0; bin <= last; ++bin)
        {
            sum += shares[bin];
            if (sum > threshold)
            {
                range.high = base + bin;
                break;
            }
        }
        if (range.high - range.low <= 65535)
            break;
    }

    if (range.high == range.low)
        range.lines.emplace_back("[Lumora] The found dynamic range is zero");
    else if (range.high - range.low > 65535)
        range.lines.emplace_back("[Lumora] The found dynamic range is larger than 64k");
    if (!range.lines.empty())
    {
        range.low = frame.minimum;
        range.high = frame.maximum;
    }
    return range;
}

ReferenceRange ReferenceCoarseRange(const SampledFrame& frame, uint32_t low, uint32_t high)
{
    ReferenceRange range{low, high, {}};
    const uint32_t base = frame.minimum;
    const uint32_t last = (frame.maximum - base) >> 14;
    const size_t sampleCount = frame.samples.size();
    const size_t step = sampleCount >= 16777216 ? 16 : sampleCount >= 4194304 ? 4 : 1;

    std::vector<uint32_t> counts(size_t{last} + 1);
    for (size_t i = 0; i < sampleCount; i += step)
        ++counts.at((frame.samples[i] - base) >> 14);
    const std::vector<double> shares = Shares(counts, sampleCount / step);

    double sum = 0;
    for (uint32_t bin = last; bin >= 1; --bin)
    {
        sum += shares[bin];
        if (sum > 0.98)
        {
            range.low = base + bin * coarseBinWidth;
            break;
        }
    }
    sum = 0;
    for (uint32_t bin = 0; bin <= last; ++bin)
    {
        sum += shares[bin];
        if (sum > 0.98)
        {
            range.high = base + bin * coarseBinWidth + coarseBinWidth - 1;
            break;
        }
    }

    if (range.high - range.low < 262144)
        return ReferenceExactRange(frame, range.low, range.high);
    range.lines.emplace_back("[Lumora] The dynamic range is too high for calculating the exact histogram");
    return range;
}

ReferenceRange ReferenceRangeOf(const SampledFrame& frame)
{
    const uint32_t low = frame.minimum;
    const uint32_t high = frame.maximum;
    return high - low > 262143 ? ReferenceCoarseRange(frame, low, high)
                               : ReferenceExactRange(frame, low, high);
}
