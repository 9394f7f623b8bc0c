#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/console/Console.h"

#include <span>
#include <string_view>

namespace Lumora {

/// An option of a command: what the parser takes, and what the help says about it.
struct Option
{
    std::wstring_view name;
    /// What the help calls the value; empty for an option without a value.
    std::wstring_view valueName;
    std::wstring_view meaning;
    /// Writes the option into the command line. Returns false for a value that the option does not take.
    bool (*take)(CommandLine& line, std::wstring_view value);
};

/// What doctor takes on every system.
inline constexpr Option doctorJson = {
    L"--json", L"",
    L"write one object: \"allIsWell\", \"advice\", \"checks\" and \"files\"; each file has its own "
    L"\"checks\"",
    [](CommandLine& line, std::wstring_view) { return line.wantsJson = true; }};

/// A command, or the program itself.
struct CommandDescription
{
    Command command = Command::None;
    /// Whether at least one file or folder must follow the command.
    bool needsPath = false;
    std::wstring_view name = {};
    std::wstring_view summary;
    /// What the help calls a file or folder that follows the command; empty for a command that takes none.
    std::wstring_view pathName = {};
    /// Which files of a folder are taken.
    std::wstring_view filesOfFolder = {};
    /// Paragraphs, each with a line feed at its end.
    std::wstring_view details = {};
    std::span<const Option> options;
    /// Does the work, and returns the exit code. Throws a Failure. Null for the program itself.
    int (*run)(const CommandLine& line, Console& console) = nullptr;
    /// What is wrong with the options taken together; null if nothing is.
    const wchar_t* (*conflict)(const CommandLine& line) = [](const CommandLine&) -> const wchar_t* {
        return nullptr;
    };
};

/// All commands, in the order of the program's help.
[[nodiscard]] std::span<const CommandDescription> AllCommands();

/// The last of them, which this system has: doctor, and what else is needed there.
[[nodiscard]] std::span<const CommandDescription> SystemCommands() noexcept;

/// The description of a command; of the program for Command::None.
[[nodiscard]] const CommandDescription& DescriptionOf(Command command);

} // namespace Lumora
