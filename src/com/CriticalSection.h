#pragma once

#include "platform/Platform.h"

/// A lock that the thread which holds it may take again: a stream's owner may call back while it is read.
class CriticalSection
{
public:
    CriticalSection() noexcept { InitializeCriticalSection(&section); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    ~CriticalSection() { DeleteCriticalSection(&section); }

    // Named as std::lock_guard wants them.
    void lock() noexcept { EnterCriticalSection(&section); }   // NOLINT(readability-identifier-naming)
    void unlock() noexcept { LeaveCriticalSection(&section); } // NOLINT(readability-identifier-naming)

private:
    CRITICAL_SECTION section;
};
