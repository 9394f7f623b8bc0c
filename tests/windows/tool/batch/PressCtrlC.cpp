#include <windows.h>

#include <cstdlib>

/// What a person does who presses Ctrl+C in the terminal of a process: press_ctrl_c PROCESS. All processes
/// of a terminal learn of it, so it takes a program of its own, which the test survives.
int main(int argumentCount, char** arguments)
{
    if (argumentCount != 2)
        return EXIT_FAILURE;
    FreeConsole();
    if (!AttachConsole(std::strtoul(arguments[1], nullptr, 10)) || !SetConsoleCtrlHandler(nullptr, TRUE) ||
        !GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0))
        return EXIT_FAILURE;
    return EXIT_SUCCESS;
}
