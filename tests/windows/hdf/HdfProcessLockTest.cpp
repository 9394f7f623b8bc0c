#include "support/files/Hdf5File.h"
#include "support/streams/FileRead.h"
#include "windows/hdf/HolderProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<uint8_t>;

namespace {

const char* const timeout = "[Lumora] HDF: Mutex timeout";

Bytes ImageFile()
{
    return Hdf5File().AnyDataSet("/image", H5T_STD_U16LE, {40, 50}).Build();
}

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
