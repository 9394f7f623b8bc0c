#pragma once

#include "support/BytesAndLines.h"

#include <cstddef>
#include <cstdint>
#include <optional>

/// One opening of a file as the shell and WIC open it, every property included, and what it has cost.
struct MeasuredOpen
{
    MeasuredOpen(const Bytes& file, uint32_t mode, uint32_t frameIndex = 0);

    /// Nothing if the file is refused.
    std::optional<uint32_t> frameCount;
    /// The bytes of the frame as it is stored, and of its picture; 0 if it is not shown.
    int64_t frameBytes = 0;

    /// The peak, beyond the file.
    int64_t memory = 0;
    uint64_t steps = 0;
    /// Bytes of the thread's stack.
    size_t stack = 0;
};
