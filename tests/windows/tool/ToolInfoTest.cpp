#include "support/files/MrcFile.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/tool/ToolRun.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Pixels = std::vector<uint8_t>;

/// Three sections of 4 x 2 pixels, and who wrote them.
std::vector<uint8_t> AcquiredStack(std::string_view application)
{
    return MrcFile()
        .Size(4, 2, 3)
        .Mode(6)
        .Version(20140)
        .ExtendedHeader("TAV ", AcquisitionHeader(1, application, ""))
        .Samples(Pixels(size_t{4} * 2 * 3 * 2))
        .Build();
}

/// A header that promises more than the file holds.
std::vector<uint8_t> CutFile()
{
    return MrcFile().Size(4, 2, 1).Mode(6).Build();
}

TEST(ToolInfo, TellsTheEightPropertiesInWords)
{
    const TemporaryFolder folder;
    folder.Write("a.mrc", AcquiredStack("Scope"));
    folder.Write("b.mrc", GrayStack(1));
    const ToolRun run({L"info", L"a.mrc", L"b.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U);
    EXPECT_EQ(run.output, "a.mrc\n"
                          "  Dimensions      4 x 2 x 3\n"
                          "  Width           4\n"
                          "  Height          2\n"
                          "  Frames          3\n"
                          "  Bit depth       16\n"
                          "  Pixel type      UInt16\n"
                          "  Software        Scope\n"
                          "  Format details  MRC2014 Mode 6\n"
                          "b.mrc\n"
                          "  Dimensions      4 x 2\n"
                          "  Width           4\n"
                          "  Height          2\n"
                          "  Frames          1\n"
                          "  Bit depth       16\n"
                          "  Pixel type      UInt16\n"
                          "  Software        -\n"
                          "  Format details  MRC Mode 6\n");
    EXPECT_THAT(run.error, IsEmpty());
}

TEST(ToolInfo, WritesJsonThatAnyNameSurvives)
{
    const TemporaryFolder folder;
    // A tab, quotes and a backslash in the file; letters beyond ASCII in its name.
    folder.Write(L"\u00FC\u7535.mrc", AcquiredStack("a\t\"b\\c\" "));
    const ToolRun run({L"info", L"--json", L".\\\u00FC\u7535.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U);
    EXPECT_EQ(run.output,
              "[\n"
              "  {\"path\": \".\\\\\xC3\xBC\xE7\x94\xB5.mrc\", \"dimensions\": \"4 x 2 x 3\", \"width\": 4, "
              "\"height\": 2, \"frameCount\": 3, \"bitDepth\": 16, \"pixelType\": \"UInt16\", "
              "\"software\": \"a\\u0009\\\"b\\\\c\\\" \", \"formatDetails\": \"MRC2014 Mode 6\"}\n"
              "]\n");
}

TEST(ToolInfo, GoesOnAfterAFileThatItCannotRead)
{
    const TemporaryFolder folder;
    folder.Write("cut.mrc", CutFile());
    folder.Write("good.mrc", GrayStack(1));
    const ToolRun run({L"info", L"missing.mrc", L"cut.mrc", L"good.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.output, testing::StartsWith("good.mrc\n"));
    EXPECT_EQ(run.error,
              "lumora: missing.mrc: the file was not found (ERROR_FILE_NOT_FOUND)\n"
              "lumora: cut.mrc: the property handler could not read the file: the operation failed "
              "(E_FAIL); the reader noted \"[Lumora] MRC: No complete frame is present in the "
              "file\"\n");
}

TEST(ToolInfo, GivesProgramsTheReasonOfAFailure)
{
    const TemporaryFolder folder;
    folder.Write("text.mrc", Pixels(100, 'x'));
    const ToolRun run({L"info", L"--json", L"text.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_EQ(run.output, "[\n"
                          "  {\"path\": \"text.mrc\", \"error\": \"the property handler could not read the "
                          "file: the operation failed (E_FAIL); the reader noted \\\"[Lumora] Could not "
                          "identify the file format\\\"\"}\n"
                          "]\n");
}

TEST(ToolInfo, TellsOnRequestWhatTheReaderNoted)
{
    const TemporaryFolder folder;
    folder.Write("packed.mrc", MrcFile().Size(4, 2, 1).Mode(101).Samples(Pixels(4)).Build());
    EXPECT_THAT(ToolRun({L"info", L"packed.mrc"}, folder.Path()).error, IsEmpty());
    const ToolRun run({L"info", L"--verbose", L"packed.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U);
    EXPECT_EQ(run.error, "packed.mrc: [Lumora] MRC: Non-standard mode 101 detected (4-bit pixel format)\n");
}

TEST(ToolInfo, ReadsAFileThatIsBeingWritten)
{
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Write("live.mrc", GrayStack(1));
    const HANDLE writer =
        CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(writer, INVALID_HANDLE_VALUE);
    const ToolRun run({L"info", L"live.mrc"}, folder.Path());
    CloseHandle(writer);
    EXPECT_EQ(run.exitCode, 0U) << run.error;
}

TEST(ToolInfo, TakesWhatIsReadAndWhatHasARegisteredExtensionInFoldersAndBelow)
{
    const TemporaryFolder folder;
    for (const wchar_t* const name : {L"in\\b.mrc", L"in\\A.MRC", L"in\\scan.dat", L"in\\deep\\er\\c.rec",
                                      L"in\\deep\\d.st", L"in\\mrc", L"in\\.mrc"})
        folder.Write(name, GrayStack(1));
    for (const wchar_t* const name : {L"in\\readme.txt", L"in\\deep\\text.st"})
        folder.Write(name, Pixels(100, 'x'));
    const ToolRun run({L"info", L"--json", L"in"}, folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    std::vector<std::string> paths;
    for (size_t at = run.output.find("\"path\""); at != std::string::npos;
         at = run.output.find("\"path\"", at + 1))
        paths.push_back(run.output.substr(at + 9, run.output.find('"', at + 9) - at - 9));
    EXPECT_THAT(paths, testing::ElementsAre("in\\\\.mrc", "in\\\\A.MRC", "in\\\\b.mrc", "in\\\\mrc",
                                            "in\\\\scan.dat", "in\\\\deep\\\\d.st", "in\\\\deep\\\\text.st",
                                            "in\\\\deep\\\\er\\\\c.rec"));
    EXPECT_THAT(run.error, testing::StartsWith("lumora: in\\deep\\text.st: "));
}

TEST(ToolInfo, SaysWhenAFolderOrAPatternHoldsNothing)
{
    const TemporaryFolder folder;
    folder.Write("in\\readme.txt", Pixels(1));
    const ToolRun run({L"info", L"in", L"*.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_EQ(run.error, "lumora: in: there is no file for Lumora in this folder\n"
                         "lumora: *.mrc: no file has such a name\n");
}

TEST(ToolInfo, ExpandsPatterns)
{
    const TemporaryFolder folder;
    folder.Write("in\\a1.mrc", GrayStack(1));
    folder.Write("in\\a2.dat", GrayStack(1));
    folder.Write("in\\b1.mrc", GrayStack(1));
    const ToolRun run({L"info", L"in\\a?.*"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U);
    EXPECT_THAT(run.output, HasSubstr("in\\a1.mrc\n"));
    EXPECT_THAT(run.output, HasSubstr("in\\a2.dat\n"));
    EXPECT_THAT(run.output, testing::Not(HasSubstr("b1.mrc")));
}

TEST(ToolInfo, TakesNamesThatLookLikeOptionsAfterTwoDashes)
{
    const TemporaryFolder folder;
    folder.Write("--json", GrayStack(1));
    const ToolRun run({L"info", L"--", L"--json"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U);
    EXPECT_THAT(run.output, testing::StartsWith("--json\n"));
}

TEST(ToolInfo, OpensFilesFarDownInTheTree)
{
    const TemporaryFolder folder;
    const std::wstring name(100, L'd');
    const std::filesystem::path deep = std::filesystem::path(name) / name / name / L"a.mrc";
    ASSERT_GT((folder.Path() / deep).native().size(), size_t{MAX_PATH});
    folder.Write(deep, GrayStack(1));
    const ToolRun run({L"info", deep.wstring(), name}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_THAT(run.output, HasSubstr("a.mrc\n"));
}

} // namespace
