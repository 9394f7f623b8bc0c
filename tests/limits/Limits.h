#pragma once

#include "limits/MeasuredOpen.h"
#include "support/BytesAndLines.h"

#include <cstdint>
#include <string>

/// The memory that a file may take: some for any file, and some for each of its bytes.
constexpr int64_t memoryForAnyFile = int64_t{64} << 20;
constexpr int64_t memoryPerByte = 4;

/// What the first frame of a file costs, and its header alone.
struct FileCost
{
    MeasuredOpen header;
    MeasuredOpen frame;
};

/// Opens a file for its header, its first frame and its last one, and compares each cost with the limits of
/// the format that the file's first bytes show. `what` names the file in a report.
FileCost ExpectWithinLimits(const Bytes& file, const std::string& what);

/// The table in docs/limits.md: the most that the files so far have cost.
[[nodiscard]] std::string LimitTable();
