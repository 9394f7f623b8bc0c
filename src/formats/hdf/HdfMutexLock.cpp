#include "formats/hdf/HdfMutexLock.h"

namespace Tav::Imaging::RawImage {

HdfMutexLock::~HdfMutexLock()
{
    // The lock does not record whether it has the mutex: releasing a mutex that is not held fails and changes
    // nothing.
    if (handle)
        ReleaseMutex(handle);
}

bool HdfMutexLock::Acquire() const noexcept
{
    constexpr DWORD longestWaitMilliseconds = 1000;
    return handle && WaitForSingleObject(handle, longestWaitMilliseconds) == WAIT_OBJECT_0;
}

} // namespace Tav::Imaging::RawImage
