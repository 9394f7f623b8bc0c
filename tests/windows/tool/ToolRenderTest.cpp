#include "support/files/MrcFile.h"
#include "support/gray/GrayFiles.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/clients/WicClient.h"
#include "windows/tool/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Pixels = std::vector<uint8_t>;

/// The pixels of a gray PNG file.
Pixels PngPixels(const TemporaryFolder& folder, const char* name)
{
    const std::vector<uint8_t> content = folder.Read(name);
    const ComPtr<IWICBitmapDecoder> decoder = Discover(content);
    EXPECT_TRUE(FormatOf(decoder) == GUID_ContainerFormatPng) << name;
    return PixelsOf(Frame(decoder, 0).Get(), 1);
}

std::array<UINT, 2> PngSize(const TemporaryFolder& folder, const char* name)
{
    const std::vector<uint8_t> content = folder.Read(name);
    std::array<UINT, 2> size{};
    EXPECT_EQ(Frame(Discover(content), 0)->GetSize(&size[0], &size[1]), S_OK);
    return size;
}

std::vector<uint8_t> BlackPicture(uint32_t width, uint32_t height)
{
    return MrcFile().Size(width, height, 1).Mode(0).Samples(Pixels(size_t{width} * height)).Build();
}

TEST(ToolRender, WritesTheFirstFrame)
{
    const TemporaryFolder folder;
    folder.Write("in\\stack.mrc", GrayStack(3));
    const ToolRun run({L"render", L"in\\stack.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_EQ(run.output, "stack.png\n");
    EXPECT_THAT(run.error, IsEmpty());
    EXPECT_THAT(folder.Files(), ElementsAre("in/stack.mrc", "stack.png"));
    EXPECT_EQ(PngPixels(folder, "stack.png"), grayPictures[0]);
}

TEST(ToolRender, TakesNamesThatDifferInCaseForTheSame)
{
    const TemporaryFolder folder;
    folder.Write("a\\x.mrc", GrayStack(1));
    folder.Write("b\\X.MRC", GrayStack(1));
    const ToolRun run({L"render", L"a\\x.mrc", L"b\\X.MRC"}, folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_EQ(run.output, "x.png\n");
    EXPECT_EQ(run.error,
              "lumora: b\\X.MRC: its picture would be X.png, which is the picture of a\\x.mrc; -o names "
              "another folder\n");
}

TEST(ToolRender, WritesTheFrameThatIsAskedFor)
{
    const TemporaryFolder folder;
    folder.Write("stack.mrc", GrayStack(3));
    EXPECT_EQ(ToolRun({L"render", L"--frame", L"2", L"stack.mrc"}, folder.Path()).output, "stack-2.png\n");
    EXPECT_EQ(ToolRun({L"render", L"--frame=0", L"stack.mrc"}, folder.Path()).output, "stack.png\n");
    EXPECT_EQ(PngPixels(folder, "stack-2.png"), grayPictures[2]);
    EXPECT_EQ(PngPixels(folder, "stack.png"), grayPictures[0]);
}

TEST(ToolRender, WritesAllFrames)
{
    const TemporaryFolder folder;
    folder.Write("stack.mrc", GrayStack(3));
    const ToolRun run({L"render", L"--frame", L"all", L"-o", L"pictures\\new", L"stack.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_THAT(folder.Files(), ElementsAre("pictures/new/stack-0.png", "pictures/new/stack-1.png",
                                            "pictures/new/stack-2.png", "stack.mrc"));
    EXPECT_EQ(PngPixels(folder, "pictures/new/stack-0.png"), grayPictures[0]);
    EXPECT_EQ(PngPixels(folder, "pictures/new/stack-1.png"), grayPictures[1]);
    EXPECT_EQ(PngPixels(folder, "pictures/new/stack-2.png"), grayPictures[2]);
}

TEST(ToolRender, WritesFilesOfEveryFormat)
{
    for (const GrayFile& file : GrayFiles())
    {
        SCOPED_TRACE(file.name);
        const TemporaryFolder folder;
        const std::filesystem::path path = folder.Write(file.name, file.content);
        const ToolRun run({L"render", path.filename().wstring()}, folder.Path());
        EXPECT_EQ(run.exitCode, 0U) << run.error;
        EXPECT_EQ(PngPixels(folder, path.filename().replace_extension(".png").string().c_str()),
                  file.pictures[0]);
    }
}

TEST(ToolRender, ScalesTheLongerSideDownButNeverUp)
{
    const TemporaryFolder folder;
    folder.Write("wide.mrc", BlackPicture(300, 100));
    folder.Write("high.mrc", BlackPicture(7, 50));
    folder.Write("small.mrc", BlackPicture(20, 10));
    const ToolRun run({L"render", L"--size", L"30", L"wide.mrc", L"high.mrc", L"small.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_THAT(PngSize(folder, "wide.png"), ElementsAre(30U, 10U));
    EXPECT_THAT(PngSize(folder, "high.png"), ElementsAre(4U, 30U)); // 7 * 30 / 50 is 4.2
    EXPECT_THAT(PngSize(folder, "small.png"), ElementsAre(20U, 10U));
}

TEST(ToolRender, KeepsALineThatScalingWouldLose)
{
    const TemporaryFolder folder;
    folder.Write("line.mrc", BlackPicture(1000, 1));
    EXPECT_EQ(ToolRun({L"render", L"--size", L"10", L"line.mrc"}, folder.Path()).exitCode, 0U);
    EXPECT_THAT(PngSize(folder, "line.png"), ElementsAre(10U, 1U));
}

TEST(ToolRender, WritesColours)
{
    const TemporaryFolder folder;
    folder.Write("rgb.mrc", MrcFile().Size(2, 1, 1).Mode(16).Samples({10, 20, 30, 200, 210, 220}).Build());
    EXPECT_EQ(ToolRun({L"render", L"rgb.mrc"}, folder.Path()).exitCode, 0U);
    const std::vector<uint8_t> content = folder.Read("rgb.png");
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(Discover(content), 0);
    const ComPtr<IWICBitmapSource> blueFirst = Converted(frame.Get(), GUID_WICPixelFormat32bppBGRA);
    EXPECT_THAT(PixelsOf(blueFirst.Get(), 4), ElementsAre(30, 20, 10, 255, 220, 210, 200, 255));
}

TEST(ToolRender, KeepsTheSubfoldersOfAFolder)
{
    const TemporaryFolder folder;
    folder.Write("in\\x.mrc", GrayStack(1));
    folder.Write("in\\sub\\x.mrc", GrayStack(1));
    const ToolRun run({L"render", L"in", L"-o", L"out"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_THAT(folder.Files(), ElementsAre("in/sub/x.mrc", "in/x.mrc", "out/sub/x.png", "out/x.png"));
}

TEST(ToolRender, ReplacesAnEarlierPictureOnly)
{
    const TemporaryFolder folder;
    folder.Write("x.mrc", GrayStack(2));
    EXPECT_EQ(ToolRun({L"render", L"--frame", L"1", L"x.mrc"}, folder.Path()).exitCode, 0U);
    std::filesystem::rename(folder.Path() / "x-1.png", folder.Path() / "x.png");
    EXPECT_EQ(ToolRun({L"render", L"x.mrc"}, folder.Path()).exitCode, 0U);
    EXPECT_EQ(PngPixels(folder, "x.png"), grayPictures[0]);
    // An empty file holds nothing that could be lost; any other may.
    folder.Write("x.png", Pixels());
    EXPECT_EQ(ToolRun({L"render", L"x.mrc"}, folder.Path()).exitCode, 0U);
    const Pixels other = {0x89, 'P', 'N', 'G'};
    folder.Write("x.png", other);
    EXPECT_EQ(ToolRun({L"render", L"x.mrc"}, folder.Path()).exitCode, 1U);
    EXPECT_EQ(folder.Read("x.png"), other);
}

TEST(ToolRender, NeverReplacesASource)
{
    const TemporaryFolder folder;
    folder.Write("x.png", GrayStack(1));
    folder.Write("x.mrc", GrayStack(1));
    const ToolRun run({L"render", L"x.mrc", L"X.png"}, folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.error,
                HasSubstr("lumora: x.mrc: there is a file of another kind of the name x.png; -o names "
                          "another place"));
    EXPECT_THAT(run.error,
                HasSubstr("lumora: X.png: its picture would be X.png, which is the picture of x.mrc"));
    EXPECT_EQ(folder.Read("x.png"), GrayStack(1));
    EXPECT_THAT(folder.Files(), ElementsAre("x.mrc", "x.png"));
}

TEST(ToolRender, SaysWhenAFileBelongsToAnotherCodec)
{
    const TemporaryFolder folder;
    folder.Write("x.mrc", GrayStack(1));
    ASSERT_EQ(ToolRun({L"render", L"x.mrc"}, folder.Path()).exitCode, 0U);
    const ToolRun run({L"render", L"-o", L"again", L"x.png"}, folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.error, testing::MatchesRegex("lumora: x.png: WIC opens this file with .*, not with "
                                                 "Lumora\n"));
}

TEST(ToolRender, LeavesNothingUnfinishedWhereItCannotWrite)
{
    const TemporaryFolder folder;
    folder.Write("x.mrc", GrayStack(1));
    std::filesystem::create_directory(folder.Path() / "x.png");
    const ToolRun run({L"render", L"x.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.error,
                HasSubstr("lumora: x.mrc: there is a folder of the name x.png; -o names another place"));
    EXPECT_THAT(folder.Files(), ElementsAre("x.mrc"));
}

} // namespace
