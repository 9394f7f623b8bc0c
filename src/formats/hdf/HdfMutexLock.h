#pragma once

#include "platform/Platform.h"

namespace Tav::Imaging::RawImage {

/// The mutex that serialises every use of the HDF5 library, in all threads of all processes that know its
/// name.
constexpr wchar_t hdfMutexName[] = L"Perivane_Mutex_HDF5_Library";

/// Holds a handle of the mutex, which may be null, and releases the mutex at its end, also one that was not
/// taken. The handle is never closed: the last one that is closed destroys the mutex, and the next read would
/// find none of that name.
class HdfMutexLock
{
public:
    explicit HdfMutexLock(HANDLE mutexHandle) noexcept : handle(mutexHandle) {}
    HdfMutexLock(const HdfMutexLock&) = delete;
    HdfMutexLock& operator=(const HdfMutexLock&) = delete;
    ~HdfMutexLock();

    /// Waits for the mutex, one second at most. False when it was not to be had.
    [[nodiscard]] bool Acquire() const noexcept;

private:
    HANDLE handle;
};

} // namespace Tav::Imaging::RawImage
