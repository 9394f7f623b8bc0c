#include "windows/hdf/HolderProcess.h"

#include "support/ProgramFolder.h"

#include <gtest/gtest.h>

namespace {

/// Ends a test that would hang. The slowest machine starts and ends a program in less.
constexpr DWORD patienceMilliseconds = 60'000;

} // namespace

HolderProcess::HolderProcess(const std::wstring& option)
{
    std::wstring commandLine = L'"' + (ProgramFolder() / L"mutex_holder.exe").wstring() +
                               L"\" LumoraTest_Held LumoraTest_LetGo " + option;
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    EXPECT_TRUE(CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               &startup, &process));
    EXPECT_EQ(WaitForSingleObject(held, patienceMilliseconds), WAIT_OBJECT_0);
}

HolderProcess::~HolderProcess()
{
    CloseHandle(held);
    CloseHandle(letGo);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

void HolderProcess::LetGo() const
{
    EXPECT_TRUE(SetEvent(letGo));
    EXPECT_EQ(WaitForSingleObject(process.hProcess, patienceMilliseconds), WAIT_OBJECT_0);
    DWORD exitCode = ~0U;
    EXPECT_TRUE(GetExitCodeProcess(process.hProcess, &exitCode));
    EXPECT_EQ(exitCode, 0U);
}
