#include "lumora/arguments/CommandLine.h"
#include "lumora/arguments/HelpText.h"
#include "lumora/batch/WorkerProcess.h"
#include "lumora/commands/DoctorCommand.h"
#include "lumora/commands/InfoCommand.h"
#include "lumora/commands/RenderCommand.h"
#include "lumora/commands/SheetCommand.h"
#include "lumora/console/Console.h"
#include "lumora/console/Failure.h"
#include "lumora/windows/ComApartment.h"
#include "lumora/windows/RegisterCommand.h"

#include <exception>
#include <span>

using namespace Lumora;

namespace {

constexpr int somethingFailed = 1;
constexpr int wrongUsage = 2;

int RunCommand(const CommandLine& line, Console& console)
{
    if (line.wantsHelp)
    {
        console.Print(HelpText(line.command));
        return 0;
    }
    if (line.wantsVersion)
    {
        console.Print(std::wstring(L"lumora ") + LUMORA_VERSION + L"\n");
        return 0;
    }
    const ComApartment apartment;
    switch (line.command)
    {
    case Command::Info:
        return RunInfo(line, console);
    case Command::Render:
        return RunRender(line, console);
    case Command::Sheet:
        return RunSheet(line, console);
    case Command::Doctor:
        return RunDoctor(line, console);
    case Command::Register:
        return RunRegister(line, console);
    case Command::Unregister:
        return RunUnregister(line, console);
    case Command::None:
        break;
    }
    return wrongUsage;
}

/// Whether the user runs the command for its output. A registration or its removal succeeds even if its
/// output cannot be written, because a setup program has no console.
bool IsOutputWanted(const CommandLine& line)
{
    const bool changesTheRegistry = line.command == Command::Register || line.command == Command::Unregister;
    return !changesTheRegistry || line.onlyCheck || line.wantsHelp || line.wantsVersion;
}

int Run(std::span<const wchar_t* const> arguments, Console& console)
{
    if (arguments.size() == 1 && std::wstring_view(arguments.front()) == workerArgument)
    {
        const ComApartment apartment;
        return RunWorkerProcess();
    }
    const CommandLine line = ParseCommandLine(arguments);
    const int exitCode = RunCommand(line, console);
    if (exitCode == 0 && IsOutputWanted(line) && !console.IsComplete())
        throw Failure{notAllWritten};
    return exitCode;
}

} // namespace

// The start-up code requires this name.
int wmain(int count, wchar_t** arguments) // NOLINT(readability-identifier-naming)
{
    Console console;
    int exitCode = somethingFailed;
    try
    {
        exitCode = Run({arguments + 1, arguments + count}, console);
    }
    catch (const UsageError& error)
    {
        console.Complain(L"lumora: " + error.text + L"; see \"" + HelpInvocation(error.command) + L"\"");
        exitCode = wrongUsage;
    }
    catch (const Failure& failure)
    {
        console.Complain(L"lumora: " + failure.text);
    }
    catch (const std::exception& exception)
    {
        const std::string_view text = exception.what();
        console.Complain(L"lumora: " + std::wstring(text.begin(), text.end()));
    }
    return exitCode;
}
