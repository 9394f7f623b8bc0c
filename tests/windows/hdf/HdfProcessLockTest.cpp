#include "support/ProgramFolder.h"
#include "support/files/Hdf5File.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>

using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<uint8_t>;

namespace {

const char* const timeout = "[Lumora] HDF: Mutex timeout";

Bytes ImageFile()
{
    return Hdf5File().AnyDataSet("/image", H5T_STD_U16LE, {40, 50}).Build();
}

/// A process that has taken the library's mutex and holds it until it is let go.
class HolderProcess
{
public:
    explicit HolderProcess(const std::wstring& option = {})
    {
        std::wstring commandLine = L'"' + (ProgramFolder() / L"mutex_holder.exe").wstring() +
                                   L"\" LumoraTest_Held LumoraTest_LetGo " + option;
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        EXPECT_TRUE(CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                   &startup, &process));
        EXPECT_EQ(WaitForSingleObject(held, patienceMilliseconds), WAIT_OBJECT_0);
    }
    HolderProcess(const HolderProcess&) = delete;
    HolderProcess& operator=(const HolderProcess&) = delete;

    ~HolderProcess()
    {
        CloseHandle(held);
        CloseHandle(letGo);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }

    void LetGo() const
    {
        EXPECT_TRUE(SetEvent(letGo));
        EXPECT_EQ(WaitForSingleObject(process.hProcess, patienceMilliseconds), WAIT_OBJECT_0);
        DWORD exitCode = ~0U;
        EXPECT_TRUE(GetExitCodeProcess(process.hProcess, &exitCode));
        EXPECT_EQ(exitCode, 0U);
    }

private:
    /// Ends a test that would hang. The slowest machine starts and ends a program in less.
    static constexpr DWORD patienceMilliseconds = 60'000;
    HANDLE held = CreateEventW(nullptr, TRUE, FALSE, L"LumoraTest_Held");
    HANDLE letGo = CreateEventW(nullptr, TRUE, FALSE, L"LumoraTest_LetGo");
    PROCESS_INFORMATION process = {};
};

TEST(HdfProcessLock, FailsAReadAfterASecondWhileAnotherProcessHoldsTheMutex)
{
    const Bytes file = ImageFile();
    EXPECT_TRUE(FileOpen{file}.succeeded);
    const HolderProcess holder;
    const ULONGLONG start = GetTickCount64();
    EXPECT_THAT(FileOpen{file}.lines, ElementsAre(timeout));
    EXPECT_GE(GetTickCount64() - start, 900U);
    holder.LetGo();
    const FileOpen later{file};
    EXPECT_TRUE(later.succeeded);
    EXPECT_THAT(later.lines, IsEmpty());
}

TEST(HdfProcessLock, FailsOneReadAfterAHolderHasCrashed)
{
    const Bytes file = ImageFile();
    EXPECT_TRUE(FileOpen{file}.succeeded) << "this process keeps the mutex alive";
    HolderProcess{L"crash"}.LetGo();
    EXPECT_THAT(FileOpen{file}.lines, ElementsAre(timeout));
    EXPECT_TRUE(FileOpen{file}.succeeded);
}

} // namespace
