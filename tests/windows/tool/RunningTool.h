#pragma once

#include "lumora/windows/files/OwnedHandle.h"
#include "windows/clients/TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <vector>

/// What becomes of what a program prints: it is kept, or cannot be written, as on a full disk.
enum class ToolOutput
{
    Kept,
    Unwritable,
};

/// A run of lumora.exe that a test can look at and disturb. It ends with this object.
class RunningTool
{
public:
    /// Starts the program with these arguments in a folder. The flags are those of CreateProcess.
    RunningTool(const std::vector<std::wstring>& arguments, const std::filesystem::path& folder,
                ToolOutput toolOutput = ToolOutput::Kept, DWORD creationFlags = 0);
    RunningTool(const RunningTool&) = delete;
    RunningTool& operator=(const RunningTool&) = delete;
    ~RunningTool();

    /// What it has written up to now, as UTF-8.
    [[nodiscard]] std::string Output() const;
    [[nodiscard]] std::string Error() const;

    /// Waits until it has written this to its standard output.
    void WaitForOutput(const std::string& text) const;

    /// Waits for its end, and gives its exit code.
    [[nodiscard]] DWORD WaitForEnd() const;

    [[nodiscard]] bool HasEnded() const;

    [[nodiscard]] DWORD Id() const { return id; }

    /// Its processes that work on files, from the moment on at which there are so many.
    [[nodiscard]] std::vector<Lumora::OwnedHandle> Workers(size_t count) const;

    /// Ends it as the task manager does.
    void Kill() const;

private:
    const TemporaryFolder outputs;
    Lumora::OwnedHandle process;
    DWORD id = 0;
};
