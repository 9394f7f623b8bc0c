#include "support/display/ReferenceRange.h"

#include <map>

namespace {

constexpr uint32_t coarseBinWidth = 16384;

/// The occupied bins in order, each with its part of the whole. Empty bins change no running sum.
using Shares = std::map<uint32_t, double>;

Shares SharesOf(const std::map<uint32_t, uint32_t>& counts, uint64_t whole)
{
    Shares shares;
    for (const auto& [bin, count] : counts)
        shares[bin] = static_cast<double>(count) / static_cast<double>(whole);
    return shares;
}

} // namespace

ReferenceRange ReferenceExactRange(const SampledFrame& frame, uint32_t low, uint32_t high)
{
    ReferenceRange range{low, high, {}};
    const uint32_t base = low;

    std::map<uint32_t, uint32_t> counts;
    for (const uint32_t sample : frame.samples)
    {
        const uint32_t bin = sample - base;
        if (bin <= high - low)
            ++counts[bin];
    }
    const Shares shares = SharesOf(counts, frame.samples.size());

    for (const double threshold : {0.999, 0.99, 0.95, 0.9})
    {
        double sum = 0;
        for (auto bin = shares.rbegin(); bin != shares.rend() && bin->first >= 1; ++bin)
        {
            sum += bin->second;
            if (sum > threshold)
            {
                range.low = base + bin->first - 1;
                break;
            }
        }
        sum = 0;
        for (auto bin = shares.begin(); bin != shares.end(); ++bin)
        {
            sum += bin->second;
            if (sum > threshold)
            {
                range.high = base + bin->first;
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
    const size_t sampleCount = frame.samples.size();
    const size_t step = sampleCount >= 16777216 ? 16 : sampleCount >= 4194304 ? 4 : 1;

    std::map<uint32_t, uint32_t> counts;
    for (size_t i = 0; i < sampleCount; i += step)
        ++counts[(frame.samples[i] - base) >> 14];
    const Shares shares = SharesOf(counts, sampleCount / step);

    double sum = 0;
    for (auto bin = shares.rbegin(); bin != shares.rend() && bin->first >= 1; ++bin)
    {
        sum += bin->second;
        if (sum > 0.98)
        {
            range.low = base + bin->first * coarseBinWidth;
            break;
        }
    }
    sum = 0;
    for (auto bin = shares.begin(); bin != shares.end(); ++bin)
    {
        sum += bin->second;
        if (sum > 0.98)
        {
            range.high = base + bin->first * coarseBinWidth + coarseBinWidth - 1;
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
