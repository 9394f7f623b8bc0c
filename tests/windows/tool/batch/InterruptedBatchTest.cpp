#include "support/FileBytes.h"
#include "support/ProgramFolder.h"
#include "support/TestFolders.h"
#include "support/files/MrcFile.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/hdf/HolderProcess.h"
#include "windows/tool/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using Lumora::OwnedHandle;
using testing::AllOf;
using testing::Each;
using testing::EndsWith;
using testing::Gt;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Lt;
using testing::MatchesRegex;
using testing::SizeIs;

namespace {

using Arguments = std::vector<std::wstring>;

constexpr int files = 300;

/// Three digits, so that the names have the order of the numbers.
std::string Name(int number)
{
    return std::to_string(1000 + number).substr(1);
}

/// A file whose picture differs from those of the others.
Bytes File(int number)
{
    Bytes samples(size_t{64} * 64);
    for (size_t index = 0; index < samples.size(); ++index)
        samples[index] = static_cast<uint8_t>(index * index / (7 + static_cast<size_t>(number)));
    return MrcFile().Size(64, 64, 1).Mode(0).Samples(samples).Build();
}

size_t Lines(const std::string& text)
{
    return static_cast<size_t>(std::ranges::count(text, '\n'));
}

/// Presses Ctrl+C in the terminal of the run.
void PressCtrlC(const RunningTool& tool)
{
    std::wstring commandLine =
        L'"' + (ProgramFolder() / L"press_ctrl_c.exe").wstring() + L"\" " + std::to_wstring(tool.Id());
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started = {};
    ASSERT_TRUE(CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               &startup, &started));
    const OwnedHandle thread(started.hThread);
    const OwnedHandle process(started.hProcess);
    WaitForSingleObject(process.get(), INFINITE);
    DWORD exitCode = ~0UL;
    GetExitCodeProcess(process.get(), &exitCode);
    EXPECT_EQ(exitCode, 0U);
}

/// Many files in the folder "in", and their pictures from a run that nothing has disturbed.
class InterruptedBatch : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        folder = new TemporaryFolder;
        for (int number = 0; number < files; ++number)
            folder->Write("in\\" + Name(number) + ".mrc", File(number));
        const ToolRun run(Render(L"undisturbed"), folder->Path());
        ASSERT_EQ(run.exitCode, 0U) << run.error;
        ASSERT_EQ(Lines(run.output), size_t{files});
    }

    static void TearDownTestSuite()
    {
        delete folder;
        folder = nullptr;
    }

    static Arguments Render(const wchar_t* target)
    {
        return {L"render", L"--skip-existing", L"--jobs", L"2", L"-o", target, L"in"};
    }

    /// A run whose output shows that both of its processes are at work.
    static std::unique_ptr<RunningTool> RunInTheMiddle(const wchar_t* target)
    {
        auto tool =
            std::make_unique<RunningTool>(Render(target), folder->Path(), ToolOutput::Kept, CREATE_NO_WINDOW);
        tool->WaitForOutput("020.png\n");
        return tool;
    }

    static std::vector<std::string> FilesIn(const std::string& target)
    {
        std::vector<std::string> names = folder->Files();
        std::erase_if(names, [&](const std::string& name) { return !name.starts_with(target + '/'); });
        return names;
    }

    /// Runs once more, and compares the pictures with those of the undisturbed run.
    static ToolRun Complete(const wchar_t* target)
    {
        const std::string name = std::filesystem::path(target).string();
        ToolRun run(Render(target), folder->Path());
        EXPECT_EQ(run.exitCode, 0U) << run.error;
        EXPECT_EQ(FilesIn(name).size(), size_t{files});
        for (int number = 0; number < files; ++number)
        {
            const std::string picture = '\\' + Name(number) + ".png";
            EXPECT_EQ(folder->Read(name + picture), folder->Read("undisturbed" + picture)) << number;
        }
        return run;
    }

    static const TemporaryFolder* folder;
};

const TemporaryFolder* InterruptedBatch::folder = nullptr;

TEST_F(InterruptedBatch, StopsAfterCtrlCWithoutHalfWrittenFilesAndCanGoOn)
{
    const std::unique_ptr<RunningTool> tool = RunInTheMiddle(L"stopped");
    PressCtrlC(*tool);
    EXPECT_EQ(tool->WaitForEnd(), 1U);
    const size_t done = Lines(tool->Output());
    EXPECT_THAT(done, AllOf(Gt(20U), Lt(size_t{files})));
    EXPECT_EQ(tool->Error(), "lumora: stopped after " + std::to_string(done) + " files\n");
    EXPECT_THAT(FilesIn("stopped"), SizeIs(done));
    EXPECT_THAT(FilesIn("stopped"), Each(EndsWith(".png")));
    EXPECT_EQ(Lines(Complete(L"stopped").output), files - done);
}

TEST_F(InterruptedBatch, BeginsNothingNewAfterCtrlCEvenIfAFileTakesLong)
{
    folder->Write("slow.h5", FileBytes(TestFolder("source") / "samples" / "acquisition.h5"));
    const HolderProcess holder;
    const RunningTool tool({L"render", L"--jobs", L"2", L"-o", L"late", L"slow.h5", L"in"}, folder->Path(),
                           ToolOutput::Kept, CREATE_NO_WINDOW);
    while (FilesIn("late").size() < 5 && !tool.HasEnded())
        Sleep(5);
    PressCtrlC(tool);
    Sleep(200);
    const size_t begun = FilesIn("late").size();
    EXPECT_THAT(begun, Lt(size_t{files}));
    Sleep(300);
    EXPECT_THAT(FilesIn("late"), SizeIs(begun));
    holder.LetGo();
    EXPECT_EQ(tool.WaitForEnd(), 1U);
    EXPECT_THAT(FilesIn("late"), SizeIs(begun + 1)) << "slow.png";
    EXPECT_EQ(tool.Error(), "lumora: stopped after " + std::to_string(begun + 1) + " files\n");
}

TEST_F(InterruptedBatch, LosesNothingWhenItIsKilled)
{
    const std::unique_ptr<RunningTool> tool = RunInTheMiddle(L"killed");
    tool->Kill();
    static_cast<void>(tool->WaitForEnd());
    EXPECT_THAT(FilesIn("killed").size(), AllOf(Gt(20U), Lt(size_t{files})));
    EXPECT_THAT(Complete(L"killed").error, IsEmpty());
}

TEST_F(InterruptedBatch, GivesTheWholePageAfterAShardWasKilled)
{
    const Arguments page = {L"sheet", L"--html", L"--skip-existing", L"--jobs", L"2", L"in"};
    const auto shard = [&page](const wchar_t* number) {
        Arguments arguments = page;
        arguments.insert(arguments.end(), {L"-o", L"pages", L"--shard", number});
        return arguments;
    };
    {
        const RunningTool tool(shard(L"2/2"), folder->Path());
        while (FilesIn("pages/pictures").size() < 5 && !tool.HasEnded())
            Sleep(5);
        tool.Kill();
        static_cast<void>(tool.WaitForEnd());
    }
    const Arguments merge = {L"merge", L"pages\\index-*-of-2.html"};
    EXPECT_EQ(ToolRun(shard(L"1/2"), folder->Path()).exitCode, 0U);
    EXPECT_EQ(ToolRun(merge, folder->Path()).error, "lumora: these shards are missing: 2/2\n");
    EXPECT_EQ(ToolRun(shard(L"2/2"), folder->Path()).exitCode, 0U);
    EXPECT_EQ(ToolRun(merge, folder->Path()).output, "pages\\index.html\n");

    EXPECT_EQ(ToolRun(page, folder->Path()).exitCode, 0U);
    EXPECT_EQ(folder->Read("pages/index.html"), folder->Read("sheet/index.html"));
    EXPECT_EQ(FilesIn("pages/pictures").size(), size_t{files});
    for (const std::string& picture : FilesIn("sheet/pictures"))
        EXPECT_EQ(folder->Read("pages" + picture.substr(5)), folder->Read(picture)) << picture;
}

/// Files of which the first two are done at once, and the next two only when nobody else reads HDF5 files.
class StuckBatch : public testing::Test
{
protected:
    StuckBatch()
    {
        const Bytes hdf = FileBytes(TestFolder("source") / "samples" / "acquisition.h5");
        for (const int number : {0, 1, 4, 5, 6})
            folder.Write(Name(number) + ".mrc", File(number));
        folder.Write("002.h5", hdf);
        folder.Write("003.h5", hdf);
        tool = std::make_unique<RunningTool>(Arguments{L"render", L"--jobs", L"2", L"-o", L"out", L"0*"},
                                             folder.Path(), ToolOutput::Kept, CREATE_NO_WINDOW);
        tool->WaitForOutput("out\\001.png\n");
    }

    const TemporaryFolder folder;
    const HolderProcess holder;
    std::unique_ptr<RunningTool> tool;
};

TEST_F(StuckBatch, LosesOnlyTheFilesOfProcessesThatDie)
{
    constexpr UINT accessViolation = 0xC0000005;
    for (const OwnedHandle& worker : tool->Workers(2))
        TerminateProcess(worker.get(), accessViolation);
    EXPECT_EQ(tool->WaitForEnd(), 1U);
    holder.LetGo();
    EXPECT_EQ(tool->Output(), "out\\000.png\nout\\001.png\nout\\004.png\nout\\005.png\nout\\006.png\n");
    EXPECT_THAT(tool->Error(),
                MatchesRegex("lumora: 002.h5: the process that worked on it has ended with 0xC0000005\n"
                             "lumora: 003.h5: the process that worked on it has ended with 0xC0000005\n"));
}

TEST_F(StuckBatch, TakesItsProcessesAlongWhenItIsKilled)
{
    const std::vector<OwnedHandle> workers = tool->Workers(2);
    for (const OwnedHandle& worker : workers)
        EXPECT_EQ(WaitForSingleObject(worker.get(), 0), DWORD{WAIT_TIMEOUT});
    tool->Kill();
    for (const OwnedHandle& worker : workers)
        EXPECT_EQ(WaitForSingleObject(worker.get(), 10'000), WAIT_OBJECT_0);
    holder.LetGo();
}

TEST_F(StuckBatch, FinishesItsFilesAfterTheFirstCtrlC)
{
    PressCtrlC(*tool);
    Sleep(100);
    EXPECT_FALSE(tool->HasEnded());
    holder.LetGo();
    EXPECT_EQ(tool->WaitForEnd(), 1U);
    EXPECT_THAT(tool->Output(), HasSubstr("out\\001.png\nout\\002.png\nout\\003.png\n"));
    EXPECT_EQ(tool->Error(), "lumora: stopped after " + std::to_string(Lines(tool->Output())) + " files\n");
}

TEST_F(StuckBatch, EndsAtOnceAfterTheSecondCtrlC)
{
    const std::vector<OwnedHandle> workers = tool->Workers(2);
    PressCtrlC(*tool);
    EXPECT_FALSE(tool->HasEnded());
    PressCtrlC(*tool);
    // Windows gives the exit code, which differs under Wine.
    static_cast<void>(tool->WaitForEnd());
    for (const OwnedHandle& worker : workers)
        EXPECT_EQ(WaitForSingleObject(worker.get(), 10'000), WAIT_OBJECT_0);
    EXPECT_EQ(tool->Error(), "");
    holder.LetGo();
}

} // namespace
