#pragma once

#include "platform/Platform.h"

/// A lock that its thread may take again, because the owner of a stream may call back during a read.
class CriticalSection
{
public:
    CriticalSection() noexcept { InitializeCriticalSection(&section); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    ~CriticalSection() { DeleteCriticalSection(&section); }

    // std::lock_guard requires these names.
    void lock() noexcept { EnterCriticalSection(&section); }   // NOLINT(readability-identifier-naming)
    void unlock() noexcept { LeaveCriticalSection(&section); } // NOLINT(readability-identifier-naming)

private:
    CRITICAL_SECTION section;
};
