#include "support/FileBytes.h"
#include "support/TestFolders.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/hdf/HolderProcess.h"
#include "windows/tool/RunningTool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

TEST(HdfTurn, IsWaitedForHoweverLongItTakes)
{
    const TemporaryFolder folder;
    folder.Write("a.h5", FileBytes(TestFolder("source") / "samples" / "acquisition.h5"));
    const HolderProcess holder;
    const RunningTool info({L"info", L"--verbose", L"a.h5"}, folder.Path());
    const RunningTool render({L"render", L"--jobs", L"2", L"a.h5"}, folder.Path());
    // The reader gives up after one second.
    Sleep(3000);
    EXPECT_FALSE(info.HasEnded()) << info.Error();
    EXPECT_FALSE(render.HasEnded()) << render.Error();
    holder.LetGo();
    EXPECT_EQ(info.WaitForEnd(), 0U);
    EXPECT_EQ(render.WaitForEnd(), 0U);
    EXPECT_THAT(info.Output(), HasSubstr("a.h5\n  Dimensions"));
    EXPECT_EQ(render.Output(), "a.png\n");
    EXPECT_EQ(info.Error(), "") << "nobody needs to know of the reads that have given up";
    EXPECT_EQ(render.Error(), "");
    EXPECT_THAT(folder.Files(), ElementsAre("a.h5", "a.png"));
}

} // namespace
