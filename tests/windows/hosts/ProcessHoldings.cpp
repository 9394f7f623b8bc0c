#include "windows/hosts/ProcessHoldings.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <psapi.h>
#include <winternl.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

/// From the list of the handles of all processes, because Wine does not count for GetProcessHandleCount.
size_t OpenHandles()
{
    std::vector<uint8_t> list(0x10000);
    constexpr auto tooShort = static_cast<NTSTATUS>(0xC0000004);
    while (NtQuerySystemInformation(SystemHandleInformation, list.data(), static_cast<ULONG>(list.size()),
                                    nullptr) == tooShort)
        list.resize(2 * list.size());
    ULONG entries = 0;
    std::memcpy(&entries, list.data(), sizeof(entries));
    size_t count = 0;
    for (size_t i = 0; i < entries; ++i)
    {
        SYSTEM_HANDLE_ENTRY entry = {};
        const size_t place = offsetof(SYSTEM_HANDLE_INFORMATION, Handle) + i * sizeof(entry);
        std::memcpy(&entry, list.data() + place, sizeof(entry));
        count += entry.OwnerPid == GetCurrentProcessId() ? 1 : 0;
    }
    EXPECT_GT(count, 0U);
    return count;
}

size_t PrivateBytes()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters)));
    EXPECT_GT(counters.PagefileUsage, 0U);
    return counters.PagefileUsage;
}

} // namespace

ProcessHoldings::ProcessHoldings(const ModuleHeap& heap)
    : moduleBlocks(heap.BlocksHeld()), handles(OpenHandles()), bytes(PrivateBytes())
{}
