#pragma once

#include <cstddef>
#include <cstdint>

/// Reserves addresses without memory. Returns null if there are no more.
[[nodiscard]] uint8_t* ReservePages(size_t bytes) noexcept;

/// Commits zeroed memory at reserved addresses, in whole pages of the processor. Returns false if there is no
/// more.
[[nodiscard]] bool CommitPages(uint8_t* first, size_t bytes) noexcept;

/// Releases all that ReservePages has returned.
void ReleasePages(uint8_t* first, size_t bytes) noexcept;
