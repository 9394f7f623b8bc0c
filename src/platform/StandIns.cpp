#include "platform/StandIns.h"

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace {

/// A mutex that its owner can take again.
struct NamedMutex
{
    std::thread::id owner;
    uint32_t holds = 0;
};

struct NamedMutexes
{
    std::mutex guard;
    std::condition_variable released;
    /// The entries of a map never move, so a handle can point to one.
    std::map<std::wstring, NamedMutex> byName;
};

NamedMutexes& Mutexes()
{
    static NamedMutexes mutexes;
    return mutexes;
}

thread_local DebugStringSink debugStringSink = nullptr;

} // namespace

void PropVariantInit(PROPVARIANT* variant)
{
    std::memset(variant, 0, sizeof(*variant));
}

HRESULT PropVariantClear(PROPVARIANT* variant)
{
    if (variant->vt == VT_LPWSTR)
        CoTaskMemFree(variant->pwszVal);
    PropVariantInit(variant);
    return S_OK;
}

void* CoTaskMemAlloc(size_t count)
{
    return std::malloc(count);
}

void CoTaskMemFree(void* memory)
{
    std::free(memory);
}

void OutputDebugStringW(const wchar_t* line)
{
    if (debugStringSink)
        debugStringSink(line);
}

void SetDebugStringSink(DebugStringSink sink)
{
    debugStringSink = sink;
}

HANDLE CreateMutexW(void*, BOOL, const wchar_t* name)
{
    NamedMutexes& mutexes = Mutexes();
    const std::lock_guard lock{mutexes.guard};
    return &mutexes.byName[name];
}

HANDLE OpenMutexW(DWORD, BOOL, const wchar_t* name)
{
    NamedMutexes& mutexes = Mutexes();
    const std::lock_guard lock{mutexes.guard};
    const auto found = mutexes.byName.find(name);
    return found == mutexes.byName.end() ? nullptr : &found->second;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds)
{
    NamedMutexes& mutexes = Mutexes();
    NamedMutex& mutex = *static_cast<NamedMutex*>(handle);
    const auto isFree = [&mutex] { return mutex.holds == 0 || mutex.owner == std::this_thread::get_id(); };
    std::unique_lock lock{mutexes.guard};
    if (!mutexes.released.wait_for(lock, std::chrono::milliseconds(milliseconds), isFree))
        return WAIT_TIMEOUT;
    mutex.owner = std::this_thread::get_id();
    ++mutex.holds;
    return WAIT_OBJECT_0;
}

BOOL ReleaseMutex(HANDLE handle)
{
    NamedMutexes& mutexes = Mutexes();
    NamedMutex& mutex = *static_cast<NamedMutex*>(handle);
    const std::lock_guard lock{mutexes.guard};
    if (mutex.holds == 0 || mutex.owner != std::this_thread::get_id())
        return 0;
    if (--mutex.holds == 0)
        mutexes.released.notify_all();
    return 1;
}
