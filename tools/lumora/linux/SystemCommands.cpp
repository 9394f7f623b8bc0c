#include "lumora/arguments/Commands.h"
#include "lumora/commands/DoctorCommand.h"

namespace Lumora {

namespace {

constexpr Option doctorOptions[] = {
    doctorJson,
};

constexpr CommandDescription commands[] = {
    {
        .command = Command::Doctor,
        .name = L"doctor",
        .summary = L"Find out why there is no thumbnail, and change nothing",
        .pathName = L"FILE",
        .filesOfFolder = L"every file below it with an extension that Lumora knows.",
        .details =
            L"Doctor looks for Lumora's thumbnailer and the kinds of files where the desktop looks for them, "
            L"at the file managers that are installed and their limits, and opens each FILE. Each line is "
            L"\"ok\", \"note\" or \"problem\". The sentence at the end says what is wrong, the most "
            L"fundamental problem first, and what to do. The exit code is 0 when all is well and 1 "
            L"otherwise.\n",
        .options = doctorOptions,
        .run = RunDoctor,
    },
};

} // namespace

std::span<const CommandDescription> SystemCommands() noexcept
{
    return commands;
}

} // namespace Lumora
