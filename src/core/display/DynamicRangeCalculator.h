#pragma once

#include "core/samples/Image.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace Tav::Imaging::RawImage {

/// Finds the display range of a frame by cutting away a small share of its darkest and brightest samples
/// with a histogram.
class DynamicRangeCalculator
{
public:
    /// The widest range, high - low, that the exact pass is meant for; wider ones start with the coarse pass.
    static constexpr uint32_t widestExactRange = 0x3FFFF;

    /// Starts with the image's own range, in sample units.
    DynamicRangeCalculator(uint32_t low, uint32_t high) noexcept : low(low), high(high) {}
    virtual ~DynamicRangeCalculator() = default;

    /// Runs the pass that the image's range asks for.
    void ComputeRange(const Image<unsigned int>& image);

    /// One histogram bin for each sample value from low to high; samples outside are not counted. If the
    /// result is empty or wider than 65535, the image's own range is used.
    void ComputeExactRange(const Image<unsigned int>& image);

    /// The same from a histogram that begins at `low`, of an image with `sampleCount` samples and the given
    /// range.
    void ComputeExactRange(std::span<const uint32_t> counts, size_t sampleCount, uint32_t imageLow,
                           uint32_t imageHigh);

    /// One bin for 16384 sample values, on a part of the samples when there are many; goes on with the
    /// exact pass when that has made the range narrow enough.
    void ComputeCoarseRange(const Image<unsigned int>& image);

    /// Ends of the display range, in sample units.
    uint32_t low;
    uint32_t high;
};

} // namespace Tav::Imaging::RawImage
