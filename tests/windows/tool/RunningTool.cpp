#include "windows/tool/RunningTool.h"

#include "support/FileBytes.h"
#include "windows/clients/LumoraModule.h"
#include "windows/support/Quoted.h"

#include <windows.h>

#include <tlhelp32.h>

#include <gtest/gtest.h>

#include <functional>

using Lumora::OwnedHandle;

namespace {

/// Ends a test that would hang. The slowest machine needs less.
constexpr DWORD patienceMilliseconds = 60'000;

/// A new file for the child process, which may do no more than this with it.
HANDLE OpenForChild(const std::filesystem::path& path, DWORD access)
{
    SECURITY_ATTRIBUTES inheritable = {sizeof(inheritable), nullptr, TRUE};
    const HANDLE file =
        CreateFileW(path.c_str(), access, FILE_SHARE_READ, &inheritable, CREATE_ALWAYS, 0, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    return file;
}

std::string TextOf(const std::filesystem::path& path)
{
    const std::vector<uint8_t> bytes = FileBytes(path);
    return {bytes.begin(), bytes.end()};
}

/// Waits until it is so. Returns false if it takes far too long.
bool WaitUntil(const std::function<bool()>& isSo)
{
    const ULONGLONG start = GetTickCount64();
    while (!isSo())
    {
        if (GetTickCount64() - start > patienceMilliseconds)
            return false;
        Sleep(5);
    }
    return true;
}

/// The processes of lumora.exe that a process has started.
std::vector<OwnedHandle> ChildrenOf(DWORD parent)
{
    std::vector<OwnedHandle> children;
    const OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL isThere = Process32FirstW(snapshot.get(), &entry); isThere;
         isThere = Process32NextW(snapshot.get(), &entry))
    {
        // A console is a child process, too.
        if (entry.th32ParentProcessID == parent && std::wstring(entry.szExeFile) == L"lumora.exe")
            children.emplace_back(OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, entry.th32ProcessID));
    }
    return children;
}

} // namespace

RunningTool::RunningTool(const std::vector<std::wstring>& arguments, const std::filesystem::path& folder,
                         ToolOutput toolOutput, DWORD creationFlags)
{
    std::wstring commandLine = Quoted(LumoraModule::File().replace_filename(L"lumora.exe").wstring());
    for (const std::wstring& argument : arguments)
        commandLine += L' ' + Quoted(argument);

    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = OpenForChild(outputs.Path() / "output",
                                      toolOutput == ToolOutput::Kept ? GENERIC_WRITE : GENERIC_READ);
    startup.hStdError = OpenForChild(outputs.Path() / "error", GENERIC_WRITE);
    PROCESS_INFORMATION started = {};
    const BOOL isStarted = CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, creationFlags,
                                          nullptr, folder.c_str(), &startup, &started);
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    if (!isStarted)
    {
        ADD_FAILURE() << "lumora.exe cannot be started: " << GetLastError();
        return;
    }
    CloseHandle(started.hThread);
    process.reset(started.hProcess);
    id = started.dwProcessId;
}

RunningTool::~RunningTool()
{
    // The files of its output can be deleted when it has ended.
    Kill();
    WaitForSingleObject(process.get(), patienceMilliseconds);
}

std::string RunningTool::Output() const
{
    return TextOf(outputs.Path() / "output");
}

std::string RunningTool::Error() const
{
    return TextOf(outputs.Path() / "error");
}

void RunningTool::WaitForOutput(const std::string& text) const
{
    EXPECT_TRUE(WaitUntil([&] { return Output().find(text) != std::string::npos || HasEnded(); }));
    EXPECT_NE(Output().find(text), std::string::npos) << Output() << Error();
}

DWORD RunningTool::WaitForEnd() const
{
    EXPECT_EQ(WaitForSingleObject(process.get(), patienceMilliseconds), WAIT_OBJECT_0);
    DWORD exitCode = ~0UL;
    GetExitCodeProcess(process.get(), &exitCode);
    return exitCode;
}

bool RunningTool::HasEnded() const
{
    return WaitForSingleObject(process.get(), 0) == WAIT_OBJECT_0;
}

std::vector<OwnedHandle> RunningTool::Workers(size_t count) const
{
    std::vector<OwnedHandle> workers;
    EXPECT_TRUE(WaitUntil([&] {
        workers = ChildrenOf(id);
        return workers.size() >= count || HasEnded();
    }));
    EXPECT_EQ(workers.size(), count);
    return workers;
}

void RunningTool::Kill() const
{
    TerminateProcess(process.get(), 1);
}
