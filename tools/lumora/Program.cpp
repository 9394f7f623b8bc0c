#include "lumora/Program.h"

#include "lumora/arguments/CommandLine.h"
#include "lumora/arguments/Commands.h"
#include "lumora/arguments/HelpText.h"
#include "lumora/batch/WorkerProcess.h"
#include "lumora/console/Console.h"
#include "lumora/console/Failure.h"

#include <exception>

namespace Lumora {

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
    return DescriptionOf(line.command).run(line, console);
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
        return RunWorkerProcess();
    const CommandLine line = ParseCommandLine(arguments);
    const int exitCode = RunCommand(line, console);
    if (exitCode == 0 && IsOutputWanted(line) && !console.IsComplete())
        throw Failure{notAllWritten};
    return exitCode;
}

} // namespace

int RunProgram(std::span<const wchar_t* const> arguments)
{
    Console console;
    int exitCode = somethingFailed;
    try
    {
        exitCode = Run(arguments, console);
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

} // namespace Lumora
