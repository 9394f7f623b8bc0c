#include "formats/hdf/HdfMutexLock.h"

namespace Tav::Imaging::RawImage {

HdfMutexLock::~HdfMutexLock()
{
    // Nobody notes whether the mutex was taken: a release of one that was not fails and changes nothing.
    if (handle)
        ReleaseMutex(handle);
}

bool HdfMutexLock::Acquire() const noexcept
{
    constexpr DWORD longestWaitMilliseconds = 1000;
    return handle && WaitForSingleObject(handle, longestWaitMilliseconds) == WAIT_OBJECT_0;
}

} // namespace Tav::Imaging::RawImage
