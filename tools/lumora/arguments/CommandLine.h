#pragma once

#include "lumora/arguments/FrameSelection.h"
#include "lumora/files/NameList.h"
#include "lumora/shards/Shard.h"
#include "registration/Scope.h"

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
    Merge,
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
    /// A file with further names; empty for none.
    std::wstring namesFrom;
    NameList::Separator separator = NameList::Separator::Line;
    bool isVerbose = false;

    // info and doctor
    bool wantsJson = false;
    // info and render
    bool wantsJsonLines = false;

    // info, render and sheet
    uint32_t jobs = 1;
    std::optional<Shard> shard;

    // render
    std::optional<FrameSelection> frames;
    std::optional<uint32_t> quality;
    bool isJpeg = false;
    bool isMontage = false;

    // sheet
    bool isPage = false;
    bool onlyReadable = false;
    std::optional<uint32_t> rows;

    // render, sheet and merge
    /// The folder for the pictures, the sheet, or the merged file.
    std::optional<std::wstring> output;

    // render and sheet
    std::optional<uint32_t> longerSide;
    std::optional<uint32_t> columns;
    bool skipsExisting = false;

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
