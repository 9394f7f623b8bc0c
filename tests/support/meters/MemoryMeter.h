#pragma once

#include <cstdint>

/// Counts the memory that the process takes from its construction on. A program that links MemoryMeter.cpp
/// has its own heap functions and system calls, which count: the heap's blocks, and pages that can be
/// written.
class MemoryMeter
{
public:
    MemoryMeter() noexcept;

    /// The most bytes at one time, beyond those that were in use before.
    [[nodiscard]] int64_t Peak() const noexcept;

private:
    int64_t before;
};
