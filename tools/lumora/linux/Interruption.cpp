#include "lumora/console/Interruption.h"

#include <atomic>
#include <csignal>

namespace Lumora {

namespace {

std::atomic<bool> isWanted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal may come at any time");

struct Signal
{
    int number;
    /// What was done about it before.
    struct sigaction earlier;
};

Signal signals[] = {{SIGINT, {}}, {SIGTERM, {}}, {SIGHUP, {}}};

void AskToStop(int number)
{
    if (!isWanted.exchange(true))
        return;
    std::signal(number, SIG_DFL);
    std::raise(number);
}

} // namespace

Interruption::Interruption()
{
    struct sigaction action = {};
    action.sa_handler = AskToStop;
    action.sa_flags = SA_RESTART;
    for (Signal& signal : signals)
    {
        sigaction(signal.number, nullptr, &signal.earlier);
        // Somebody wants the program to go on: nohup, or a shell that has started it in the background.
        if (signal.earlier.sa_handler != SIG_IGN)
            sigaction(signal.number, &action, nullptr);
    }
}

Interruption::~Interruption()
{
    for (const Signal& signal : signals)
        sigaction(signal.number, &signal.earlier, nullptr);
}

bool Interruption::IsWanted() noexcept
{
    return isWanted;
}

} // namespace Lumora
