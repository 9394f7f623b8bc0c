#include "platform/ThreadStack.h"

#ifdef _WIN32
#include <windows.h>

#include <algorithm>
#endif

uintptr_t LowestStack(size_t bytes) noexcept
{
    const uintptr_t lowest = reinterpret_cast<uintptr_t>(__builtin_frame_address(0)) - bytes;
#ifdef _WIN32
    constexpr uintptr_t enoughToThrow = 0x8000;
    ULONG_PTR low = 0;
    ULONG_PTR high = 0;
    GetCurrentThreadStackLimits(&low, &high);
    return std::max<uintptr_t>(lowest, low + enoughToThrow);
#else
    return lowest;
#endif
}
