#include "support/FileRead.h"
#include "support/Hdf5File.h"

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

std::filesystem::path HolderProgram()
{
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    return std::filesystem::path{path}.replace_filename(L"mutex_holder.exe");
}

/// A process that has taken the library's mutex and holds it for a while.
class HolderProcess
{
public:
    explicit HolderProcess(const std::wstring& holding)
    {
        const HANDLE isHeld = CreateEventW(nullptr, TRUE, FALSE, L"LumoraTest_MutexIsHeld");
        std::wstring commandLine = L'"' + HolderProgram().wstring() + L"\" LumoraTest_MutexIsHeld " + holding;
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        EXPECT_TRUE(CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                   &startup, &process));
        EXPECT_EQ(WaitForSingleObject(isHeld, patienceMilliseconds), WAIT_OBJECT_0);
        CloseHandle(isHeld);
    }
    HolderProcess(const HolderProcess&) = delete;
    HolderProcess& operator=(const HolderProcess&) = delete;

    ~HolderProcess()
    {
        WaitForEnd();
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }

    void WaitForEnd() const
    {
        EXPECT_EQ(WaitForSingleObject(process.hProcess, patienceMilliseconds), WAIT_OBJECT_0);
        DWORD exitCode = ~0U;
        EXPECT_TRUE(GetExitCodeProcess(process.hProcess, &exitCode));
        EXPECT_EQ(exitCode, 0U);
    }

private:
    static constexpr DWORD patienceMilliseconds = 30'000;
    PROCESS_INFORMATION process = {};
};

TEST(HdfProcessLock, FailsAReadWhileAnotherProcessHoldsTheMutexForTwoSeconds)
{
    const Bytes file = ImageFile();
    EXPECT_TRUE(FileOpen{file}.succeeded);
    const HolderProcess holder{L"2000"};
    const ULONGLONG start = GetTickCount64();
    EXPECT_THAT(FileOpen{file}.lines, ElementsAre(timeout));
    EXPECT_GE(GetTickCount64() - start, 900U);
    holder.WaitForEnd();
    const FileOpen later{file};
    EXPECT_TRUE(later.succeeded);
    EXPECT_THAT(later.lines, IsEmpty());
}

TEST(HdfProcessLock, FailsOneReadAfterAHolderHasCrashed)
{
    const Bytes file = ImageFile();
    EXPECT_TRUE(FileOpen{file}.succeeded) << "this process keeps the mutex alive";
    HolderProcess{L"0 crash"}.WaitForEnd();
    EXPECT_THAT(FileOpen{file}.lines, ElementsAre(timeout));
    EXPECT_TRUE(FileOpen{file}.succeeded);
}

} // namespace
