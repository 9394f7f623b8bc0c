#include "windows/support/ModuleHeap.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <mutex>

namespace {

std::atomic<size_t> requests{0};
std::atomic<size_t> largestRequest{0};
/// Counts down to the request that fails.
std::atomic<uint32_t> requestsLeft{0};
std::atomic<bool> refused{false};

/// The blocks held. A container that takes memory of its own would call the hooks out of themselves.
std::mutex heldMutex;
std::array<void*, 65536> held;
size_t heldCount = 0;

/// Not by its name: this program's own calls are hooked as well.
const auto realFree = reinterpret_cast<void (*)(void*)>(
    reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), "free")));

bool Refuses(size_t size)
{
    ++requests;
    largestRequest = std::max(largestRequest.load(), size);
    if (requestsLeft == 0 || --requestsLeft != 0)
        return false;
    refused = true;
    return true;
}

void* Hold(void* block)
{
    const std::lock_guard guard(heldMutex);
    if (block)
        held.at(heldCount++) = block;
    return block;
}

void Forget(void* block)
{
    const std::lock_guard guard(heldMutex);
    // The blocks taken last are most often the first to go.
    const auto last = held.rend() - static_cast<ptrdiff_t>(heldCount);
    if (const auto found = std::find(last, held.rend(), block); found != held.rend())
        *found = held[--heldCount];
}

void* WatchedMalloc(size_t size)
{
    return Refuses(size) ? nullptr : Hold(std::malloc(size));
}

void* WatchedCalloc(size_t count, size_t size)
{
    return Refuses(count * size) ? nullptr : Hold(std::calloc(count, size));
}

void* WatchedRealloc(void* block, size_t size)
{
    if (Refuses(size))
        return nullptr;
    // Forgotten first: another thread may be given the same address at once.
    Forget(block);
    return Hold(std::realloc(block, size));
}

void WatchedFree(void* block)
{
    Forget(block);
    realFree(block);
}

} // namespace

ModuleHeap::ModuleHeap(HMODULE module)
    : mallocHook(module, "malloc", WatchedMalloc), callocHook(module, "calloc", WatchedCalloc),
      reallocHook(module, "realloc", WatchedRealloc), freeHook(module, "free", WatchedFree),
      programFreeHook(GetModuleHandleW(nullptr), "free", WatchedFree)
{
    requests = 0;
    largestRequest = 0;
    const std::lock_guard guard(heldMutex);
    heldCount = 0;
    RefuseRequest(0);
}

ModuleHeap::~ModuleHeap()
{
    RefuseRequest(0);
}

void ModuleHeap::RefuseRequest(uint32_t number)
{
    refused = false;
    requestsLeft = number;
}

bool ModuleHeap::HasRefused() const
{
    return refused;
}

size_t ModuleHeap::Requests() const
{
    return requests;
}

size_t ModuleHeap::LargestRequest() const
{
    return largestRequest;
}

size_t ModuleHeap::BlocksHeld() const
{
    const std::lock_guard guard(heldMutex);
    return heldCount;
}
