#include "support/TestFolders.h"
#include "windows/clients/LumoraModule.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/gauntlet/RunProgram.h"
#include "windows/gauntlet/Worker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

const std::filesystem::path sourceTree = TestFolder("source");

struct GauntletRun
{
    explicit GauntletRun(std::vector<std::wstring> words)
    {
        words.insert(words.begin(), LumoraModule::File().replace_filename(L"gauntlet.exe").wstring());
        exitCode = RunProgram(words, 300, [this](const std::string& line) {
            lines.push_back(line.substr(0, line.find('\r')));
        });
    }

    std::optional<unsigned long> exitCode;
    std::vector<std::string> lines;
};

// The other seeds are no files of a format, but parts of such files, or recipes of them.
TEST(Gauntlet, IsPassedByEverySampleAndSeedThatIsAFile)
{
    std::vector<std::wstring> words = {(sourceTree / "samples").wstring(),
                                       (sourceTree / "fuzz/regressions").wstring(), L"--seconds", L"60"};
    for (const char* const format : {"bin", "dm", "emi", "hdf", "lattice", "mrc", "npy", "raw", "ser"})
        words.push_back((sourceTree / "fuzz/corpus" / format).wstring());
    const GauntletRun run(words);
    EXPECT_EQ(run.exitCode, 0U) << testing::PrintToString(run.lines);
    ASSERT_FALSE(run.lines.empty());
    EXPECT_THAT(run.lines.back(), HasSubstr(" files: 0 findings, "));
}

TEST(Gauntlet, IsPassedByRealFiles)
{
    const std::filesystem::path realFiles = TestFolder("real");
    if (!std::filesystem::is_directory(realFiles))
        GTEST_SKIP() << "there is no folder of real files: " << realFiles;
    const GauntletRun run({realFiles.wstring(), L"--seconds", L"60"});
    EXPECT_EQ(run.exitCode, 0U) << testing::PrintToString(run.lines);
}

TEST(Gauntlet, FindsWhatGoesWrongOnPurpose)
{
    const TemporaryFolder folder;
    const std::vector<uint8_t> content(10, 0);
    for (const wchar_t* const name :
         {L"a good file", rehearsedCrash, rehearsedHang, rehearsedLeak, rehearsedMemory})
        folder.Write(name, content);
    const GauntletRun run({folder.Path().wstring(), L"--seconds", L"5", L"--memory", L"500"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.lines,
                ElementsAre(MatchesRegex("crash .*rehearsal.crash  exit code 0xC0000005"),
                            MatchesRegex("hang .*rehearsal.hang  more than 5 s"),
                            MatchesRegex("leak .*rehearsal.leak  1000 bytes and 0 handles each time"),
                            MatchesRegex("memory .*rehearsal.memory  more than 500 MiB"),
                            MatchesRegex("5 files: 4 findings, . slow")));
}

TEST(Gauntlet, AsksForAPath)
{
    EXPECT_EQ(GauntletRun({L"--seconds", L"5"}).exitCode, 2U);
    EXPECT_EQ(GauntletRun({L"--unknown", L"x"}).exitCode, 2U);
    EXPECT_EQ(GauntletRun({L"--help"}).exitCode, 0U);
}

} // namespace
