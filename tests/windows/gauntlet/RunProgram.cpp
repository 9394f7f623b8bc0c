#include "windows/gauntlet/RunProgram.h"

#include "windows/support/Quoted.h"

#include <windows.h>

#include <filesystem>
#include <stdexcept>
#include <thread>

namespace {

HANDLE OpenNothing()
{
    SECURITY_ATTRIBUTES inheritable = {sizeof(inheritable), nullptr, TRUE};
    return CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable,
                       OPEN_EXISTING, 0, nullptr);
}

void ReadLines(HANDLE pipe, const std::function<void(const std::string& line)>& onLine)
{
    std::string line;
    char byte = 0;
    DWORD count = 0;
    while (ReadFile(pipe, &byte, 1, &count, nullptr) && count > 0)
    {
        if (byte != '\n')
        {
            line += byte;
            continue;
        }
        onLine(line);
        line.clear();
    }
}

} // namespace

std::optional<unsigned long> RunProgram(const std::vector<std::wstring>& words, unsigned seconds,
                                        const std::function<void(const std::string& line)>& onLine)
{
    std::wstring commandLine;
    for (const std::wstring& word : words)
        commandLine += Quoted(word) + L' ';

    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    SECURITY_ATTRIBUTES inheritable = {sizeof(inheritable), nullptr, TRUE};
    if (!CreatePipe(&reading, &writing, &inheritable, 0))
        throw std::runtime_error("there is no pipe");
    SetHandleInformation(reading, HANDLE_FLAG_INHERIT, 0);
    const HANDLE nothing = OpenNothing();
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = nothing;
    startup.hStdOutput = writing;
    startup.hStdError = nothing;
    PROCESS_INFORMATION process = {};
    const BOOL isStarted = CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                          nullptr, &startup, &process);
    CloseHandle(writing);
    CloseHandle(nothing);
    if (!isStarted)
    {
        CloseHandle(reading);
        throw std::runtime_error("cannot start " + std::filesystem::path(words[0]).string());
    }
    std::thread reader(ReadLines, reading, onLine);
    const bool hasEnded = WaitForSingleObject(process.hProcess, seconds * 1000) == WAIT_OBJECT_0;
    if (!hasEnded)
        TerminateProcess(process.hProcess, 1);
    reader.join();
    DWORD exitCode = 0;
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(reading);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    if (!hasEnded)
        return std::nullopt;
    return exitCode;
}
