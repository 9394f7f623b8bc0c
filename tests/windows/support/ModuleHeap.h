#pragma once

#include "windows/support/ImportHook.h"

#include <cstddef>
#include <cstdint>

/// Watches the memory that a module takes while this lives, and refuses it when told to. One at a time.
/// What a module keeps for good from its first use (the run-time library's state of a thread) counts as
/// taken: do once what is to be measured, then measure.
class ModuleHeap
{
public:
    explicit ModuleHeap(HMODULE module);
    ModuleHeap(const ModuleHeap&) = delete;
    ModuleHeap& operator=(const ModuleHeap&) = delete;
    ~ModuleHeap();

    /// Lets one request for memory fail: the next for 1, the one after it for 2; none for 0.
    void RefuseRequest(uint32_t number);
    /// True once the request that was to fail has been made.
    [[nodiscard]] bool HasRefused() const;
    /// Requests for memory so far.
    [[nodiscard]] size_t Requests() const;
    /// The largest request so far, in bytes.
    [[nodiscard]] size_t LargestRequest() const;
    /// Blocks taken since this lives and not given back yet.
    [[nodiscard]] size_t BlocksHeld() const;

private:
    ImportHook mallocHook;
    ImportHook callocHook;
    ImportHook reallocHook;
    ImportHook freeHook;
    /// An exception that leaves the module is freed by the program that catches it.
    ImportHook programFreeHook;
};
