#pragma once

#include "formats/HdfBlocks.h"

#include <cstdint>
#include <memory>
#include <span>

namespace Tav::Imaging::RawImage {

/// Holds the HDF5 library to what a file of these bytes can need, for as long as it lives: memory, work, and
/// the stack that nested datatypes use. Beyond that, the library finds its requests refused and gives up. The
/// caller must hold the library's mutex.
class HdfGuard
{
public:
    /// Takes the whole file, which must outlive this object.
    explicit HdfGuard(std::span<const uint8_t> file);
    HdfGuard(const HdfGuard&) = delete;
    HdfGuard& operator=(const HdfGuard&) = delete;
    ~HdfGuard();

private:
    HdfBlocks blocks;
};

/// Memory put by for the HDF5 library, which does not survive every refusal. When there is no other left, the
/// library gets this for clearing up, and every further step under a guard is refused. One lives at a time.
class HdfReserve
{
public:
    /// Throws std::bad_alloc.
    HdfReserve();
    HdfReserve(const HdfReserve&) = delete;
    HdfReserve& operator=(const HdfReserve&) = delete;
    ~HdfReserve();

    /// True once the library has needed it.
    [[nodiscard]] bool IsOpen() const noexcept { return !memory; }
    void Open() noexcept { memory.reset(); }

private:
    std::unique_ptr<uint8_t[]> memory;
};

/// Counts pieces of work that the library does for us; false, and nothing counted, when that is too much.
[[nodiscard]] bool TakeHdfSteps(uint64_t count = 1) noexcept;

/// Tells how many bytes a chunk of the dataset that is read next has, and whether they have been through
/// filters; 0 when there are no chunks. Chunks that unpack to less are refused, and an index of others.
void ExpectHdfChunks(uint64_t chunkBytes, bool areFiltered) noexcept;

} // namespace Tav::Imaging::RawImage
