#include "platform/Pages.h"

#ifdef _WIN32
#include <windows.h>

uint8_t* ReservePages(size_t bytes) noexcept
{
    return static_cast<uint8_t*>(VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS));
}

bool CommitPages(uint8_t* first, size_t bytes) noexcept
{
    return bytes == 0 || VirtualAlloc(first, bytes, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

void ReleasePages(uint8_t* first, size_t) noexcept
{
    VirtualFree(first, 0, MEM_RELEASE);
}

#else
#include <sys/mman.h>

uint8_t* ReservePages(size_t bytes) noexcept
{
    void* const pages = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return pages == MAP_FAILED ? nullptr : static_cast<uint8_t*>(pages);
}

bool CommitPages(uint8_t* first, size_t bytes) noexcept
{
    return bytes == 0 || mprotect(first, bytes, PROT_READ | PROT_WRITE) == 0;
}

void ReleasePages(uint8_t* first, size_t bytes) noexcept
{
    munmap(first, bytes);
}
#endif
