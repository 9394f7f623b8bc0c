#pragma once

#include "support/BytesAndLines.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

/// Files of one format that differ in the number of one thing.
struct GrowthCase
{
    std::string format;
    /// What there are more and more of.
    std::string things;
    /// How many the smallest file has. The larger ones have two and four times as many.
    size_t count;
    std::function<Bytes(size_t)> build;
    /// Bytes of memory for each byte that the file has more, beside the window on its header.
    int64_t memoryPerByte = 4;
};

/// Names the files in a report.
void PrintTo(const GrowthCase& growth, std::ostream* out);

[[nodiscard]] std::vector<GrowthCase> DmGrowth();
[[nodiscard]] std::vector<GrowthCase> SeriesGrowth();
[[nodiscard]] std::vector<GrowthCase> LatticeGrowth();
[[nodiscard]] std::vector<GrowthCase> HdfGrowth();
[[nodiscard]] std::vector<GrowthCase> FrameGrowth();

/// Bytes of all values in no order.
[[nodiscard]] Bytes VariedBytes(size_t count);
