#pragma once

#include "registration/RegistryTable.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace Lumora {

enum class Command
{
    None,
    Info,
    Render,
    Sheet,
    Doctor,
    Register,
    Unregister,
};

/// What the user asked for.
struct CommandLine
{
    Command command = Command::None;
    bool wantsHelp = false;
    bool wantsVersion = false;

    /// Files, folders and patterns of names.
    std::vector<std::wstring> paths;
    bool isVerbose = false;

    // info and doctor
    bool wantsJson = false;

    // render
    std::wstring outputFolder;
    /// Empty for every frame.
    std::optional<uint32_t> frame = 0;

    // render and sheet
    std::optional<uint32_t> longerSide;

    // sheet
    std::wstring sheetName = L"sheet.png";
    std::optional<uint32_t> columns;

    // register and unregister; doctor has the path too
    Scope scope = Scope::Machine;
    std::wstring dllPath;
    bool onlyCheck = false;
    /// The choices, by their names in the setup package, and their values.
    std::vector<std::pair<const wchar_t*, std::wstring>> choices;
};

/// A usage error: a command line that cannot be understood.
struct UsageError
{
    std::wstring text;
    /// The command whose help explains more.
    Command command = Command::None;
};

/// Parses the arguments after the program's name. Throws a UsageError.
[[nodiscard]] CommandLine ParseCommandLine(std::span<const wchar_t* const> arguments);

} // namespace Lumora
