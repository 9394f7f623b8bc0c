#include "lumora/console/Interruption.h"

#include <array>
#include <atomic>
#include <csignal>
#include <iterator>

namespace Lumora {

namespace {

std::atomic<bool> isWanted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal may come at any time");

constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};

/// What was done about them before.
std::array<struct sigaction, std::size(signals)> earlier;

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
    for (size_t index = 0; index < earlier.size(); ++index)
    {
        sigaction(signals[index], nullptr, &earlier[index]);
        // Somebody wants the program to go on: nohup, or a shell that has started it in the background.
        if (earlier[index].sa_handler != SIG_IGN)
            sigaction(signals[index], &action, nullptr);
    }
}

Interruption::~Interruption()
{
    for (size_t index = 0; index < earlier.size(); ++index)
        sigaction(signals[index], &earlier[index], nullptr);
}

bool Interruption::IsWanted() noexcept
{
    return isWanted;
}

} // namespace Lumora
