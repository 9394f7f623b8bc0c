#include "windows/tool/ToolRun.h"

#include "support/FileBytes.h"
#include "windows/clients/LumoraModule.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/support/Quoted.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace {

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

} // namespace

ToolRun::ToolRun(const std::vector<std::wstring>& arguments, const std::filesystem::path& folder,
                 ToolOutput toolOutput)
{
    std::wstring commandLine = Quoted(LumoraModule::File().replace_filename(L"lumora.exe").wstring());
    for (const std::wstring& argument : arguments)
        commandLine += L' ' + Quoted(argument);

    const TemporaryFolder outputs;
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = OpenForChild(outputs.Path() / "output",
                                      toolOutput == ToolOutput::Kept ? GENERIC_WRITE : GENERIC_READ);
    startup.hStdError = OpenForChild(outputs.Path() / "error", GENERIC_WRITE);
    PROCESS_INFORMATION process = {};
    const BOOL isStarted = CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                          folder.c_str(), &startup, &process);
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    if (!isStarted)
    {
        ADD_FAILURE() << "lumora.exe cannot be started: " << GetLastError();
        return;
    }
    constexpr DWORD patienceMilliseconds = 60'000;
    EXPECT_EQ(WaitForSingleObject(process.hProcess, patienceMilliseconds), WAIT_OBJECT_0);
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    output = TextOf(outputs.Path() / "output");
    error = TextOf(outputs.Path() / "error");
}
