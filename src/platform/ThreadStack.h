#pragma once

#include <cstddef>
#include <cstdint>

/// The lowest address that the calling thread's stack may use: `bytes` below this call, or less if the thread
/// has less. Below it, enough stack is left to throw an exception.
[[nodiscard]] uintptr_t LowestStack(size_t bytes) noexcept;
