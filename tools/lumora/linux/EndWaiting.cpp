#include "lumora/batch/EndWaiting.h"

#include <csignal>

#include <pthread.h>

namespace Lumora {

void EndWaiting(std::thread& thread)
{
    // A signal without SA_RESTART ends the call that waits.
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    pthread_kill(thread.native_handle(), SIGUSR1);
}

} // namespace Lumora
