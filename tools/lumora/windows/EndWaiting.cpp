#include "lumora/batch/EndWaiting.h"

#include <windows.h>

#include <pthread.h>

namespace Lumora {

void EndWaiting(std::thread& thread)
{
    CancelSynchronousIo(pthread_gethandle(thread.native_handle()));
}

} // namespace Lumora
