#include "platform/HdfMutexName.h"
#include "support/FileBytes.h"
#include "support/TestFolders.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/hdf/HolderProcess.h"
#include "windows/tool/RunningTool.h"
#include "windows/tool/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

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

/// Takes the mutex again and again, each time for longer than a reader waits.
class Rival
{
public:
    Rival()
        : thread([this] {
              while (!isOver)
              {
                  WaitForSingleObject(mutex, INFINITE);
                  Sleep(1200);
                  ReleaseMutex(mutex);
              }
          })
    {}
    Rival(const Rival&) = delete;
    Rival& operator=(const Rival&) = delete;
    ~Rival()
    {
        isOver = true;
        thread.join();
        CloseHandle(mutex);
    }

private:
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, Tav::Imaging::RawImage::hdfMutexName);
    std::atomic<bool> isOver = false;
    std::thread thread;
};

TEST(HdfTurn, ComesForEachReadOfAFile)
{
    const TemporaryFolder folder;
    folder.Write("in/scan.nxs", FileBytes(TestFolder("source") / "samples" / "acquisition.h5"));
    const Rival rival;
    // Lumora does not know the extension, so it reads the file to see whether it counts. Then it opens it,
    // decodes the second frame, and reads the properties.
    const ToolRun run({L"render", L"--frame", L"0-1", L"--jsonl", L"--jobs", L"2", L"in"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_THAT(run.output, HasSubstr("\"lines\": [], "));
    EXPECT_THAT(folder.Files(), ElementsAre("in/scan.nxs", "scan-0.png", "scan-1.png"));
}

} // namespace
