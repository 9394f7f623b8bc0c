#pragma once

#include <cstdint>

namespace Tav::Imaging::RawImage {

/// Holds the HDF5 library to what a file of this size can need, for as long as it lives: memory, work, and
/// the stack that nested datatypes use. Beyond that, the library finds its requests refused and gives up. The
/// caller must hold the library's mutex.
class HdfGuard
{
public:
    explicit HdfGuard(uint64_t fileBytes) noexcept;
    HdfGuard(const HdfGuard&) = delete;
    HdfGuard& operator=(const HdfGuard&) = delete;
    ~HdfGuard();
};

/// Counts a piece of work that the library does for us; false when there has been too much of it.
[[nodiscard]] bool TakeHdfStep() noexcept;

} // namespace Tav::Imaging::RawImage
