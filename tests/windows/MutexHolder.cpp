#include "formats/HdfMutexLock.h"

#include <cstdlib>

/// Another process that holds the HDF5 library's mutex: mutex_holder EVENT MILLISECONDS [crash]. It sets the
/// event when it has the mutex, and may end without releasing it.
int main(int argumentCount, char** arguments)
{
    if (argumentCount < 3)
        return EXIT_FAILURE;
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, Tav::Imaging::RawImage::hdfMutexName);
    const HANDLE event = OpenEventA(EVENT_MODIFY_STATE, FALSE, arguments[1]);
    if (WaitForSingleObject(mutex, INFINITE) != WAIT_OBJECT_0 || !SetEvent(event))
        return EXIT_FAILURE;
    Sleep(static_cast<DWORD>(std::atoi(arguments[2])));
    if (argumentCount == 3)
        ReleaseMutex(mutex);
    return EXIT_SUCCESS;
}
