#include "lumora/console/Interruption.h"

#include <windows.h>

#include <atomic>

namespace Lumora {

namespace {

std::atomic<bool> isWanted = false;

BOOL WINAPI AskToStop(DWORD event)
{
    const bool isFirst = !isWanted.exchange(true);
    if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT)
        return isFirst ? TRUE : FALSE;
    // When this function returns, Windows ends the program. It also does so after some seconds.
    Sleep(INFINITE);
    return TRUE;
}

} // namespace

Interruption::Interruption()
{
    SetConsoleCtrlHandler(AskToStop, TRUE);
}

Interruption::~Interruption()
{
    SetConsoleCtrlHandler(AskToStop, FALSE);
}

bool Interruption::IsWanted() noexcept
{
    return isWanted;
}

} // namespace Lumora
