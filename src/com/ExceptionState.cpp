// What the C++ run-time library knows of a thread's exceptions. Its own functions take memory and a handle on
// a thread's first exception, and end the process where there is none. These take what the loader gives each
// thread with the DLL, so a host that runs out of memory or handles gets the exception.

#include <windows.h>

#include <cxxabi.h>

#include <cstdint>

// The names are those of the C++ ABI and of the loader.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)

namespace __cxxabiv1 {

/// https://itanium-cxx-abi.github.io/cxx-abi/abi-eh.html#cxx-data
struct __cxa_eh_globals
{
    void* caughtExceptions;
    unsigned int uncaughtExceptions;
};

} // namespace __cxxabiv1

extern "C" {
/// The number of the DLL's block among those of a thread, and the beginning of the section that is copied to
/// each block.
extern ULONG _tls_index;
extern char* _tls_start;
}

namespace {

/// Its copies in the threads' blocks are used, never this one.
[[gnu::section(".tls$exceptions"), gnu::used]] __cxxabiv1::__cxa_eh_globals initialState = {nullptr, 0};

__cxxabiv1::__cxa_eh_globals* StateOfThisThread() noexcept
{
    // Where the loader keeps the thread's blocks.
    char* const* blocks = nullptr;
    asm("movq %%gs:0x58, %0" : "=r"(blocks));
    const uintptr_t offset =
        reinterpret_cast<uintptr_t>(&initialState) - reinterpret_cast<uintptr_t>(&_tls_start);
    return reinterpret_cast<__cxxabiv1::__cxa_eh_globals*>(blocks[_tls_index] + offset);
}

} // namespace

extern "C" __cxxabiv1::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals() noexcept
{
    return StateOfThisThread();
}

extern "C" __cxxabiv1::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals_fast() noexcept
{
    return StateOfThisThread();
}

// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
