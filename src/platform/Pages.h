#pragma once

#include <cstddef>
#include <cstdint>

/// Sets aside addresses without memory behind them; null when there are no more.
[[nodiscard]] uint8_t* ReservePages(size_t bytes) noexcept;

/// Puts memory of zeros behind reserved addresses; false when there is no more. Whole pages of the processor
/// only.
[[nodiscard]] bool CommitPages(uint8_t* first, size_t bytes) noexcept;

/// Gives back what ReservePages has given, whole.
void ReleasePages(uint8_t* first, size_t bytes) noexcept;
