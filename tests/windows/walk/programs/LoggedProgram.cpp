#include "windows/walk/programs/LoggedProgram.h"

#include "windows/support/Quoted.h"
#include "windows/walk/Host.h"

#include <windows.h>

#include <stdexcept>

std::optional<unsigned long> RunLogged(const std::vector<std::wstring>& words, unsigned seconds,
                                       const std::filesystem::path& log)
{
    std::wstring commandLine;
    for (const std::wstring& word : words)
        commandLine += Quoted(word) + L' ';

    SECURITY_ATTRIBUTES inheritable = {sizeof(inheritable), nullptr, TRUE};
    const HANDLE output =
        CreateFileW(log.c_str(), FILE_APPEND_DATA | SYNCHRONIZE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    &inheritable, CREATE_ALWAYS, 0, nullptr);
    const HANDLE nothing = CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable,
                                       OPEN_EXISTING, 0, nullptr);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = nothing;
    startup.hStdOutput = output;
    startup.hStdError = output;
    PROCESS_INFORMATION process = {};
    // It waits until it belongs to the job, so that its child processes do, too.
    const BOOL isStarted = CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE,
                                          CREATE_SUSPENDED, nullptr, nullptr, &startup, &process);
    CloseHandle(output);
    CloseHandle(nothing);
    if (!isStarted)
        throw std::runtime_error("cannot start " + Utf8(words[0]));
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    AssignProcessToJobObject(job, process.hProcess);
    ResumeThread(process.hThread);

    const bool hasEnded = WaitForSingleObject(process.hProcess, seconds * 1000) == WAIT_OBJECT_0;
    if (!hasEnded)
        TerminateJobObject(job, 1);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(job);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    if (!hasEnded)
        return std::nullopt;
    return exitCode;
}
