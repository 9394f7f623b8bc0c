#pragma once

#include "windows/tool/RunningTool.h"

#include <filesystem>
#include <string>
#include <vector>

/// One run of lumora.exe: its exit code and what it wrote, as UTF-8.
struct ToolRun
{
    /// Runs the program with these arguments in a folder, and waits for its end.
    ToolRun(const std::vector<std::wstring>& arguments, const std::filesystem::path& folder,
            ToolOutput toolOutput = ToolOutput::Kept);

    unsigned long exitCode = ~0UL;
    std::string output;
    std::string error;
};
