#pragma once

#include "support/BytesAndLines.h"

#include <cstdint>
#include <vector>

/// A frame of whole samples: row by row, with the range that they are shown in.
struct SampledFrame
{
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t minimum = 0;
    uint32_t maximum = 0;
    std::vector<uint32_t> samples;
};

/// A display range, and the lines that finding it writes to the debugger output.
struct ReferenceRange
{
    uint32_t low = 0;
    uint32_t high = 0;
    Lines lines;
};

/// The display range by the exact histogram, starting with (low, high).
[[nodiscard]] ReferenceRange ReferenceExactRange(const SampledFrame& frame, uint32_t low, uint32_t high);

/// The display range by the coarse histogram, and by the exact one where that has narrowed it enough,
/// starting with (low, high). No sample may be outside the frame's own range.
[[nodiscard]] ReferenceRange ReferenceCoarseRange(const SampledFrame& frame, uint32_t low, uint32_t high);

/// The display range of a frame whose own range is that of its samples.
[[nodiscard]] ReferenceRange ReferenceRangeOf(const SampledFrame& frame);
