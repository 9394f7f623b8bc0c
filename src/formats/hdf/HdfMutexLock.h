#pragma once

#include "platform/HdfMutexName.h"
#include "platform/Platform.h"

namespace Tav::Imaging::RawImage {

/// Holds a handle of the mutex, which may be null. Its destructor releases the mutex, even if it was not
/// acquired. The handle is never closed: closing the last handle destroys the mutex, and the next read would
/// find no mutex of that name.
class HdfMutexLock
{
public:
    explicit HdfMutexLock(HANDLE mutexHandle) noexcept : handle(mutexHandle) {}
    HdfMutexLock(const HdfMutexLock&) = delete;
    HdfMutexLock& operator=(const HdfMutexLock&) = delete;
    ~HdfMutexLock();

    /// Waits for the mutex, one second at most. Returns false if it was not available.
    [[nodiscard]] bool Acquire() const noexcept;

private:
    HANDLE handle;
};

} // namespace Tav::Imaging::RawImage
