#include "formats/hdf/HdfMutexLock.h"

#include <cstdlib>

/// Another process that holds the HDF5 library's mutex: mutex_holder HELD LET_GO [crash]. It sets the event
/// HELD when it has the mutex and holds it until the event LET_GO is set, or until the test must have ended
/// long ago. It may end without releasing the mutex.
int main(int argumentCount, char** arguments)
{
    if (argumentCount < 3)
        return EXIT_FAILURE;
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, Tav::Imaging::RawImage::hdfMutexName);
    const HANDLE held = OpenEventA(EVENT_MODIFY_STATE, FALSE, arguments[1]);
    const HANDLE letGo = OpenEventA(SYNCHRONIZE, FALSE, arguments[2]);
    if (WaitForSingleObject(mutex, INFINITE) != WAIT_OBJECT_0 || !SetEvent(held))
        return EXIT_FAILURE;
    constexpr DWORD patienceMilliseconds = 60'000;
    if (WaitForSingleObject(letGo, patienceMilliseconds) != WAIT_OBJECT_0)
        return EXIT_FAILURE;
    if (argumentCount == 3)
        ReleaseMutex(mutex);
    return EXIT_SUCCESS;
}
