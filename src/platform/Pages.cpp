#include "platform/Pages.h"

namespace {

size_t RoundedUp(size_t bytes, size_t unit) noexcept
{
    return (bytes + unit - 1) / unit * unit;
}

} // namespace

#ifdef _WIN32
#include <windows.h>

namespace {

constexpr size_t pageBytes = 4096;

} // namespace

uint8_t* ReservePages(size_t bytes) noexcept
{
    return static_cast<uint8_t*>(VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS));
}

bool CommitPages(uint8_t* first, size_t bytes) noexcept
{
    return bytes == 0 || VirtualAlloc(first, bytes, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

uint8_t* AllocatePages(size_t bytes) noexcept
{
    return static_cast<uint8_t*>(VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
}

void DecommitPages(uint8_t* first, size_t bytes, size_t kept) noexcept
{
    const size_t begin = RoundedUp(kept, pageBytes);
    if (begin < bytes)
        VirtualFree(first + begin, bytes - begin, MEM_DECOMMIT);
}

void ReleasePages(uint8_t* first, size_t) noexcept
{
    VirtualFree(first, 0, MEM_RELEASE);
}

#else
#include <sys/mman.h>
#include <unistd.h>

uint8_t* ReservePages(size_t bytes) noexcept
{
    void* const pages = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return pages == MAP_FAILED ? nullptr : static_cast<uint8_t*>(pages);
}

namespace {

const auto pageBytes = static_cast<size_t>(sysconf(_SC_PAGESIZE));
constexpr size_t largePageBytes = size_t{2} << 20;

/// Asks for large pages where at least two of them fit. It does not matter whether they are given.
void PreferLargePages(uint8_t* first, size_t bytes) noexcept
{
    if (bytes >= 2 * largePageBytes)
        madvise(first, bytes, MADV_HUGEPAGE);
}

} // namespace

bool CommitPages(uint8_t* first, size_t bytes) noexcept
{
    if (bytes == 0)
        return true;
    if (mprotect(first, bytes, PROT_READ | PROT_WRITE) != 0)
        return false;
    PreferLargePages(first, bytes);
    return true;
}

uint8_t* AllocatePages(size_t bytes) noexcept
{
    // Large pages begin at multiples of their size. What is before and behind them is not needed.
    const size_t most = RoundedUp(bytes, pageBytes) + largePageBytes;
    void* const pages = mmap(nullptr, most, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        return nullptr;
    auto* const first = static_cast<uint8_t*>(pages);
    const auto address = reinterpret_cast<uintptr_t>(first);
    const size_t before = RoundedUp(address, largePageBytes) - address;
    const size_t end = before + RoundedUp(bytes, pageBytes);
    if (before > 0)
        munmap(first, before);
    munmap(first + end, most - end);
    PreferLargePages(first + before, bytes);
    return first + before;
}

void DecommitPages(uint8_t* first, size_t bytes, size_t kept) noexcept
{
    const size_t begin = RoundedUp(kept, pageBytes);
    if (begin < bytes)
        madvise(first + begin, bytes - begin, MADV_DONTNEED);
}

void ReleasePages(uint8_t* first, size_t bytes) noexcept
{
    munmap(first, bytes);
}
#endif
