#pragma once

#include <cstdint>

/// Counts steps of work from its construction on. A step is one of
/// - a branch of the product's code, which the compiler has instrumented,
/// - 16 bytes that a function of the C library copies, fills, compares or searches, and each call of one,
/// - a step of the sandbox of the HDF5 library, by its own count.
/// The decoding of JPEG data is not counted.
class StepMeter
{
public:
    StepMeter() noexcept;

    [[nodiscard]] uint64_t Steps() const noexcept;

private:
    uint64_t before;
};
