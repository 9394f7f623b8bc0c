#pragma once

#include <cstddef>
#include <cstdint>

/// Reserves addresses without memory. Returns null if there are no more.
[[nodiscard]] uint8_t* ReservePages(size_t bytes) noexcept;

/// Commits zeroed memory at reserved addresses, in whole pages of the processor. Returns false if there is no
/// more.
[[nodiscard]] bool CommitPages(uint8_t* first, size_t bytes) noexcept;

/// Reserves and commits at once, in large pages where the system gives them to any program: those cost a
/// fraction of the time. Returns null if there is no memory.
[[nodiscard]] uint8_t* AllocatePages(size_t bytes) noexcept;

/// Returns the memory behind the first `kept` bytes to the system. The addresses stay reserved.
void DecommitPages(uint8_t* first, size_t bytes, size_t kept) noexcept;

/// Releases all that ReservePages or AllocatePages has returned.
void ReleasePages(uint8_t* first, size_t bytes) noexcept;
