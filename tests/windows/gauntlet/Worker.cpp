#include "windows/gauntlet/Worker.h"

#include "windows/gauntlet/Passage.h"

#include <windows.h>

#include <objbase.h>
#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

/// When the present file was begun, in ticks of the clock; 0 between files.
std::atomic<Clock::rep> begun{0};

size_t CommittedBytes()
{
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PagefileUsage;
}

/// Ends the process if a file takes too long or too much memory.
void Watch(const Limits& limits)
{
    const size_t mostBytes = CommittedBytes() + (size_t{limits.mebibytes} << 20);
    for (;;)
    {
        Sleep(20);
        const Clock::rep start = begun;
        if (start != 0 &&
            Clock::now() - Clock::time_point(Clock::duration(start)) > std::chrono::seconds(limits.seconds))
            TerminateProcess(GetCurrentProcess(), exitOutOfTime);
        if (CommittedBytes() > mostBytes)
            TerminateProcess(GetCurrentProcess(), exitOutOfMemory);
    }
}

/// What a process holds that it should give back.
struct Holdings
{
    size_t heapBytes = 0;
    DWORD handles = 0;
};

Holdings PresentHoldings()
{
    Holdings holdings;
    GetProcessHandleCount(GetCurrentProcess(), &holdings.handles);
    HANDLE heaps[64];
    const DWORD count = std::min<DWORD>(GetProcessHeaps(64, heaps), 64);
    for (DWORD heap = 0; heap < count; ++heap)
    {
        HeapLock(heaps[heap]);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[heap], &entry))
        {
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
                holdings.heapBytes += entry.cbData;
        }
        HeapUnlock(heaps[heap]);
    }
    return holdings;
}

/// Ends the process at once, without a debugger or a report to anybody but the parent.
LONG WINAPI Crash(EXCEPTION_POINTERS* exception)
{
    TerminateProcess(GetCurrentProcess(), exception->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

std::string Rehearsed(const std::filesystem::path& file)
{
    const std::wstring name = file.filename().wstring();
    if (name == rehearsedCrash)
        RaiseException(EXCEPTION_ACCESS_VIOLATION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    if (name == rehearsedHang)
        Sleep(INFINITE);
    if (name == rehearsedMemory)
    {
        for (;;)
            std::memset(VirtualAlloc(nullptr, 1 << 24, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE), 1, 1 << 24);
    }
    if (name == rehearsedLeak)
        HeapAlloc(GetProcessHeap(), 0, 1000);
    return TakeThroughLumora(file);
}

Holdings Growth(const Holdings& before, const Holdings& after)
{
    return {.heapBytes = std::max(after.heapBytes, before.heapBytes) - before.heapBytes,
            .handles = std::max(after.handles, before.handles) - before.handles};
}

/// What a file that was just read leaves behind each time it is read. What only the first readings leave
/// behind, such as caches, does not count.
Holdings Leak(const std::filesystem::path& file, Holdings before)
{
    Holdings after = PresentHoldings();
    Holdings least = Growth(before, after);
    for (int reading = 0; reading < 4 && (least.heapBytes != 0 || least.handles != 0); ++reading)
    {
        before = after;
        Rehearsed(file);
        after = PresentHoldings();
        const Holdings growth = Growth(before, after);
        least.heapBytes = std::min(least.heapBytes, growth.heapBytes);
        least.handles = std::min(least.handles, growth.handles);
    }
    return least;
}

} // namespace

void Work(const std::vector<std::filesystem::path>& files, size_t first, const Limits& limits)
{
    SetUnhandledExceptionFilter(Crash);
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    std::thread(Watch, limits).detach();
    for (size_t index = first; index < files.size(); ++index)
    {
        // Not on the heap, where it would count as left behind.
        char outcome[100];
        const Holdings before = PresentHoldings();
        begun = Clock::now().time_since_epoch().count();
        std::snprintf(outcome, sizeof(outcome), "%s", Rehearsed(files[index]).c_str());
        const auto taken = Clock::now().time_since_epoch().count() - begun;
        const Holdings leak = Leak(files[index], before);
        begun = 0;
        const auto milliseconds =
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::duration(taken)).count();
        std::printf("%lld\t%zu\t%lu\t%s\n", static_cast<long long>(milliseconds), leak.heapBytes,
                    static_cast<unsigned long>(leak.handles), outcome);
        std::fflush(stdout);
    }
    CoUninitialize();
}
