#include "lumora/console/Interruption.h"

#include <atomic>
#include <csignal>

namespace Lumora {

namespace {

std::atomic<bool> isWanted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal may come at any time");

constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};

void AskToStop(int number)
{
    if (!isWanted.exchange(true))
        return;
    std::signal(number, SIG_DFL);
    std::raise(number);
}

void SetHandlers(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int number : signals)
        sigaction(number, &action, nullptr);
}

} // namespace

Interruption::Interruption()
{
    SetHandlers(AskToStop);
}

Interruption::~Interruption()
{
    SetHandlers(SIG_DFL);
}

bool Interruption::IsWanted() noexcept
{
    return isWanted;
}

} // namespace Lumora
