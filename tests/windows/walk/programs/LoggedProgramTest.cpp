#include "windows/walk/programs/LoggedProgram.h"
#include "support/ProgramFolder.h"
#include "windows/clients/TemporaryFolder.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace {

std::wstring Program(const wchar_t* name)
{
    return (ProgramFolder() / name).wstring();
}

TEST(LoggedProgram, LeavesItsExitCodeAndAllThatItPrints)
{
    const TemporaryFolder folder;
    EXPECT_EQ(RunLogged({Program(L"lumora.exe"), L"info", L"no such file"}, 60, folder.Path() / "log"), 1UL);
    const std::vector<uint8_t> bytes = folder.Read("log");
    EXPECT_NE(std::string(bytes.begin(), bytes.end()).find("no such file"), std::string::npos);
}

TEST(LoggedProgram, IsEndedWhenItsTimeIsOver)
{
    const TemporaryFolder folder;
    const HANDLE held = CreateEventW(nullptr, TRUE, FALSE, L"LumoraTest_LoggedHeld");
    // Nobody sets this event, for which the program waits.
    const HANDLE letGo = CreateEventW(nullptr, TRUE, FALSE, L"LumoraTest_LoggedLetGo");
    EXPECT_EQ(RunLogged({Program(L"mutex_holder.exe"), L"LumoraTest_LoggedHeld", L"LumoraTest_LoggedLetGo"},
                        2, folder.Path() / "log"),
              std::nullopt);
    EXPECT_EQ(WaitForSingleObject(held, 0), WAIT_OBJECT_0);
    CloseHandle(held);
    CloseHandle(letGo);
}

} // namespace
