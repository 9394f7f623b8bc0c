#pragma once

#include <cstddef>
#include <cstdint>

/// The address down to which the calling thread's stack may be used: `bytes` below this call, or less where
/// the thread has less, with enough left below for an exception to be thrown.
[[nodiscard]] uintptr_t LowestStack(size_t bytes) noexcept;
