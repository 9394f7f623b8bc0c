#include "support/ByteWriter.h"
#include "support/files/MrcFile.h"
#include "support/gray/GrayFiles.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/support/PngPicture.h"
#include "windows/tool/ToolRun.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

using Pixels = std::vector<uint8_t>;
using Arguments = std::vector<std::wstring>;

// With --size 32 a cell is 144 pixels wide, so that its text has room, and 32 + 8 + 3 * 16 = 88 high. Around
// the cells are 16 pixels.
constexpr uint32_t cellWidth = 144;
constexpr uint32_t columnStep = 160;
constexpr uint32_t rowStep = 104;

/// What blue, green and red of the background are.
constexpr uint8_t background = 48;

bool IsBackground(const PngPicture& sheet, uint32_t left, uint32_t top, uint32_t width, uint32_t height)
{
    const Pixels part = sheet.Part(left, top, width, height);
    return std::count(part.begin(), part.end(), background) == static_cast<ptrdiff_t>(part.size());
}

/// A line of text below the picture of a cell of a sheet with --size 32.
Pixels Line(const PngPicture& sheet, uint32_t column, uint32_t row, uint32_t line)
{
    return sheet.Part(16 + column * columnStep, 16 + row * rowStep + 40 + line * 16, cellWidth, 16);
}

/// The sheet of pictures with a longer side of 32 pixels.
PngPicture SmallSheet(const TemporaryFolder& folder, const Arguments& arguments)
{
    Arguments all = {L"sheet", L"--size", L"32"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const ToolRun run(all, folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_EQ(run.output, "sheet.png\n");
    EXPECT_THAT(run.error, IsEmpty());
    return {folder, "sheet.png"};
}

std::vector<uint8_t> BlackPicture(uint32_t width, uint32_t height)
{
    return MrcFile().Size(width, height, 1).Mode(0).Samples(Pixels(size_t{width} * height)).Build();
}

/// A file of 4 x 2 pixels that shows one of the gray pictures.
std::vector<uint8_t> GrayPicture(size_t index)
{
    ByteWriter samples;
    for (const uint8_t brightness : grayPictures.at(index))
        samples.Put(static_cast<uint16_t>(1000 + brightness));
    return MrcFile().Size(4, 2, 1).Mode(6).Samples(samples.bytes).Build();
}

/// The same gray for blue, green and red.
Pixels InThreeColours(const Pixels& grays)
{
    Pixels colours;
    for (const uint8_t gray : grays)
        colours.insert(colours.end(), 3, gray);
    return colours;
}

MATCHER(HasText, "")
{
    return std::any_of(arg.begin(), arg.end(), [](uint8_t value) { return value > background + 60; }) &&
           std::count(arg.begin(), arg.end(), background) > static_cast<ptrdiff_t>(arg.size() / 2);
}

TEST(ToolSheet, HasACellForEachFile)
{
    struct Row
    {
        uint32_t files;
        Arguments options;
        UINT width;
        UINT height;
    };
    const Row rows[] = {
        {1, {}, 232, 288},                                         // 16 + 200 + 16; 16 + 200 + 8 + 48 + 16
        {9, {}, 1744, 560},                                        // eight of 216 pixels on a screen
        {5, {L"--columns", L"3", L"--size", L"150"}, 514, 460},    // 16 + 3 * 166; 16 + 2 * (150 + 56 + 16)
        {2, {L"--columns=32"}, 448, 288},                          // no wider than the files need
        {3, {L"--columns", L"1", L"--size", L"32"}, 176, 328},     // 16 + 160; 16 + 3 * 104
        {2, {L"--columns", L"1", L"--size", L"1024"}, 1056, 2208}, // 16 + 1040; 16 + 2 * 1096
        {2, {L"--size", L"1024"}, 1056, 2208},                     // two of them are wider than a screen
        {12, {L"--size", L"32"}, 16 + 11 * 160, 16 + 2 * 104},     // 11 of 160 pixels on a screen
    };
    const TemporaryFolder folder;
    folder.Write("x.mrc", GrayStack(1));
    for (const Row& row : rows)
    {
        Arguments arguments = {L"sheet"};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        arguments.insert(arguments.end(), row.files, L"x.mrc");
        const ToolRun run(arguments, folder.Path());
        EXPECT_EQ(run.exitCode, 0U) << run.error;
        const PngPicture sheet(folder, "sheet.png");
        EXPECT_EQ(sheet.width, row.width);
        EXPECT_EQ(sheet.height, row.height);
    }
}

TEST(ToolSheet, ShowsSmallPicturesAsTheyAreInTheMiddleOfTheirCells)
{
    const TemporaryFolder folder;
    folder.Write("a.mrc", GrayPicture(0));
    folder.Write("b.mrc", GrayPicture(1));
    folder.Write("c.mrc", GrayPicture(2));
    const PngPicture sheet = SmallSheet(folder, {L"--columns", L"2", L"*.mrc"});
    // 86 is 16 + (144 - 4) / 2, and 31 is 16 + (32 - 2) / 2.
    EXPECT_EQ(sheet.Part(86, 31, 4, 2), InThreeColours(grayPictures[0]));
    EXPECT_EQ(sheet.Part(86 + columnStep, 31, 4, 2), InThreeColours(grayPictures[1]));
    EXPECT_EQ(sheet.Part(86, 31 + rowStep, 4, 2), InThreeColours(grayPictures[2]));
    EXPECT_TRUE(IsBackground(sheet, 0, 0, 336, 31));
    EXPECT_TRUE(IsBackground(sheet, 0, 33, 336, 23));
    EXPECT_TRUE(IsBackground(sheet, 0, 0, 86, 56));
    EXPECT_TRUE(IsBackground(sheet, 90, 0, 156, 56));
    // Nothing of the first row is left where the second has no file.
    EXPECT_TRUE(IsBackground(sheet, 176, 120, 160, 104));
}

TEST(ToolSheet, ScalesTheLongerSideDown)
{
    const TemporaryFolder folder;
    folder.Write("high.mrc", BlackPicture(100, 300));
    folder.Write("wide.mrc", BlackPicture(300, 100));
    const ToolRun run({L"sheet", L"--size=100", L"high.mrc", L"wide.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    const PngPicture sheet(folder, "sheet.png");
    struct Row
    {
        uint32_t left, top, width, height;
    };
    const Row rows[] = {
        {16 + 55, 16, 33, 100},       // (144 - 33) / 2
        {176 + 22, 16 + 33, 100, 33}, // (144 - 100) / 2; (100 - 33) / 2
    };
    for (const Row& row : rows)
    {
        EXPECT_EQ(sheet.Part(row.left, row.top, row.width, row.height),
                  Pixels(size_t{3} * row.width * row.height));
        EXPECT_TRUE(IsBackground(sheet, row.left - 1, row.top, 1, row.height));
        EXPECT_TRUE(IsBackground(sheet, row.left + row.width, row.top, 1, row.height));
        EXPECT_TRUE(IsBackground(sheet, row.left, row.top - 1, row.width, 1));
        EXPECT_TRUE(IsBackground(sheet, row.left, row.top + row.height, row.width, 1));
    }
}

TEST(ToolSheet, ShowsColours)
{
    const TemporaryFolder folder;
    folder.Write("rgb.mrc", MrcFile().Size(2, 1, 1).Mode(16).Samples({10, 20, 30, 200, 210, 220}).Build());
    const PngPicture sheet = SmallSheet(folder, {L"rgb.mrc"});
    EXPECT_THAT(sheet.Part(87, 31, 2, 1), ElementsAre(30, 20, 10, 220, 210, 200));
}

TEST(ToolSheet, ShowsTheFirstFrameOfEveryFormat)
{
    for (const GrayFile& file : GrayFiles())
    {
        SCOPED_TRACE(file.name);
        const TemporaryFolder folder;
        const std::filesystem::path path = folder.Write(file.name, file.content);
        const PngPicture sheet = SmallSheet(folder, {path.filename().wstring()});
        const auto height = static_cast<uint32_t>(file.pictures[0].size() / file.width);
        EXPECT_EQ(sheet.Part(16 + (144 - file.width) / 2, 16 + (32 - height) / 2, file.width, height),
                  InThreeColours(file.pictures[0]));
    }
}

TEST(ToolSheet, ShowsEveryFileOfAFolderThatOpens)
{
    const std::vector<GrayFile> files = GrayFiles();
    const TemporaryFolder folder;
    folder.Write("in\\readme.txt", Pixels(100, 'x'));
    for (size_t i = 0; i < files.size(); ++i)
        folder.Write("in\\" + std::to_string(100 + i), files[i].content);
    const PngPicture sheet = SmallSheet(folder, {L"--columns", L"1", L"in"});
    EXPECT_EQ(sheet.height, 16 + files.size() * rowStep);
    for (uint32_t row = 0; row < files.size(); ++row)
    {
        const GrayFile& file = files[row];
        const auto height = static_cast<uint32_t>(file.pictures[0].size() / file.width);
        EXPECT_EQ(sheet.Part(16 + (144 - file.width) / 2, 16 + row * rowStep + (32 - height) / 2, file.width,
                             height),
                  InThreeColours(file.pictures[0]))
            << file.name;
    }
}

TEST(ToolSheet, TellsNameSizePixelTypeAndFrameCount)
{
    const TemporaryFolder folder;
    folder.Write("1\\a.mrc", GrayStack(1));
    folder.Write("2\\b.mrc", GrayStack(1));
    folder.Write("3\\a.mrc", GrayStack(2));
    folder.Write("4\\a.mrc", BlackPicture(4, 2));
    folder.Write("5\\a.mrc", BlackPicture(4, 3));
    const PngPicture sheet =
        SmallSheet(folder, {L"1\\a.mrc", L"2\\b.mrc", L"3\\a.mrc", L"4\\a.mrc", L"5\\a.mrc"});
    for (uint32_t column = 0; column < 5; ++column)
    {
        for (uint32_t line = 0; line < 3; ++line)
            EXPECT_THAT(Line(sheet, column, 0, line), HasText()) << column << ' ' << line;
    }
    EXPECT_NE(Line(sheet, 1, 0, 0), Line(sheet, 0, 0, 0));
    EXPECT_EQ(Line(sheet, 1, 0, 1), Line(sheet, 0, 0, 1));
    EXPECT_EQ(Line(sheet, 1, 0, 2), Line(sheet, 0, 0, 2));

    EXPECT_EQ(Line(sheet, 2, 0, 0), Line(sheet, 0, 0, 0));
    EXPECT_EQ(Line(sheet, 2, 0, 1), Line(sheet, 0, 0, 1));
    EXPECT_NE(Line(sheet, 2, 0, 2), Line(sheet, 0, 0, 2)); // two frames

    EXPECT_NE(Line(sheet, 3, 0, 1), Line(sheet, 0, 0, 1)); // Int8
    EXPECT_EQ(Line(sheet, 3, 0, 2), Line(sheet, 0, 0, 2));
    EXPECT_NE(Line(sheet, 4, 0, 1), Line(sheet, 3, 0, 1)); // 4 x 3
}

TEST(ToolSheet, WritesWithoutColouredEdges)
{
    const TemporaryFolder folder;
    folder.Write("a.mrc", GrayStack(1));
    const PngPicture sheet = SmallSheet(folder, {L"a.mrc"});
    ASSERT_THAT(Line(sheet, 0, 0, 0), HasText());
    for (size_t pixel = 0; pixel < sheet.pixels.size(); pixel += 3)
        ASSERT_THAT(Pixels(&sheet.pixels[pixel], &sheet.pixels[pixel] + 3), Each(sheet.pixels[pixel]));
}

TEST(ToolSheet, NamesTheSubfolder)
{
    const TemporaryFolder folder;
    folder.Write("in\\a.mrc", GrayStack(1));
    folder.Write("in\\b\\a.mrc", GrayStack(1));
    folder.Write("in\\c\\a.mrc", GrayStack(1));
    const PngPicture sheet = SmallSheet(folder, {L"in", L"in\\c\\a.mrc"});
    EXPECT_NE(Line(sheet, 0, 0, 0), Line(sheet, 1, 0, 0));
    EXPECT_NE(Line(sheet, 1, 0, 0), Line(sheet, 2, 0, 0));
    EXPECT_EQ(Line(sheet, 3, 0, 0), Line(sheet, 0, 0, 0)); // named itself
}

TEST(ToolSheet, CutsLongNamesInTheMiddle)
{
    const TemporaryFolder folder;
    const std::wstring name(120, L'm');
    for (const std::wstring& file : {L"A" + name + L"1", L"A" + name + L"2", L"B" + name + L"1"})
        folder.Write(file + L".mrc", GrayStack(1));
    const PngPicture sheet = SmallSheet(folder, {L"*.mrc"});
    EXPECT_NE(Line(sheet, 0, 0, 0), Line(sheet, 1, 0, 0));
    EXPECT_NE(Line(sheet, 0, 0, 0), Line(sheet, 2, 0, 0));
    for (uint32_t column = 0; column < 4; ++column)
        EXPECT_TRUE(IsBackground(sheet, column * columnStep, 0, 16, sheet.height)) << column;
}

TEST(ToolSheet, SaysInItsPlaceThatAFileCannotBeShown)
{
    const TemporaryFolder folder;
    folder.Write("cut.mrc", MrcFile().Size(4, 2, 1).Mode(6).Build());
    folder.Write("good.mrc", GrayPicture(1));
    folder.Write("text.mrc", Pixels(100, 'x'));
    const ToolRun run({L"sheet", L"--size", L"32", L"missing.mrc", L"cut.mrc", L"good.mrc", L"text.mrc"},
                      folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    const PngPicture sheet(folder, "sheet.png");
    EXPECT_EQ(sheet.width, 16 + 3 * columnStep); // the missing file has no place
    const Pixels place = sheet.Part(16, 16, cellWidth, 32);
    EXPECT_THAT(place, AllOf(Not(Each(place[0])), Not(testing::Contains(background))));
    EXPECT_EQ(sheet.Part(16 + 2 * columnStep, 16, cellWidth, 32), place);
    EXPECT_NE(Line(sheet, 0, 0, 0), Line(sheet, 2, 0, 0));
    EXPECT_FALSE(IsBackground(sheet, 16, 72, cellWidth, 32)); // the reason
    EXPECT_EQ(sheet.Part(86 + columnStep, 31, 4, 2), InThreeColours(grayPictures[1]));
}

TEST(ToolSheet, IsNotWrittenWhenThereAreNoFiles)
{
    const TemporaryFolder folder;
    folder.Write("in\\readme.txt", Pixels(1));
    const Pixels earlier = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    folder.Write("sheet.png", earlier);
    const ToolRun run({L"sheet", L"in"}, folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.output, IsEmpty());
    EXPECT_EQ(run.error, "lumora: in: there is no file for Lumora in this folder\n"
                         "lumora: there are no files for a sheet\n");
    EXPECT_EQ(folder.Read("sheet.png"), earlier);
}

TEST(ToolSheet, GoesWhereItIsWanted)
{
    const TemporaryFolder folder;
    folder.Write("x.mrc", GrayStack(1));
    const ToolRun run({L"sheet", L"-o", L"new\\er\\today.png", L"x.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_EQ(run.output, "new\\er\\today.png\n");
    EXPECT_THAT(folder.Files(), ElementsAre("new/er/today.png", "x.mrc"));
    EXPECT_EQ(PngPicture(folder, "new/er/today.png").width, 232U);
}

TEST(ToolSheet, ReplacesAnEarlierSheetAmongTheFiles)
{
    const TemporaryFolder folder;
    folder.Write("in\\x.mrc", GrayStack(1));
    const Arguments arguments = {L"sheet", L"-o", L"in\\sheet.png", L"in"};
    EXPECT_EQ(ToolRun(arguments, folder.Path()).exitCode, 0U);
    folder.Write("in\\y.mrc", GrayStack(1));
    EXPECT_EQ(ToolRun(arguments, folder.Path()).exitCode, 0U);
    EXPECT_EQ(PngPicture(folder, "in/sheet.png").width, 448U);
    EXPECT_THAT(folder.Files(), ElementsAre("in/sheet.png", "in/x.mrc", "in/y.mrc"));
}

TEST(ToolSheet, NeverReplacesASource)
{
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Write("x.mrc", GrayStack(1));
    ASSERT_TRUE(CreateHardLinkW((folder.Path() / "link.png").c_str(), file.c_str(), nullptr));
    for (const char* const name : {"X.MRC", "link.png"})
    {
        const ToolRun run({L"sheet", L"-o", std::filesystem::path(name).wstring(), L".\\x.mrc"},
                          folder.Path());
        EXPECT_EQ(run.exitCode, 1U);
        EXPECT_EQ(run.error, std::string("lumora: there is a file of another kind of the name ") + name +
                                 "; -o names another place\n");
        EXPECT_EQ(folder.Read(name), GrayStack(1));
    }
    EXPECT_THAT(folder.Files(), ElementsAre("link.png", "x.mrc"));
}

TEST(ToolSheet, LeavesNothingUnfinishedWhereItCannotWrite)
{
    const TemporaryFolder folder;
    folder.Write("x.mrc", GrayStack(1));
    std::filesystem::create_directory(folder.Path() / "pictures");
    const ToolRun run({L"sheet", L"-o", L"pictures", L"x.mrc"}, folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_EQ(run.error, "lumora: there is a folder of the name pictures; -o names another place\n");
    const ToolRun below({L"sheet", L"-o", L"x.mrc\\sheet.png", L"x.mrc"}, folder.Path());
    EXPECT_EQ(below.exitCode, 1U);
    EXPECT_THAT(below.error, StartsWith("lumora: cannot make the folder x.mrc\\: "));
    EXPECT_THAT(folder.Files(), ElementsAre("x.mrc"));
}

TEST(ToolSheet, BeginsAnotherOneWhenItIsAsLargeAsProgramsCanShow)
{
    const TemporaryFolder folder;
    folder.Write("x.mrc", GrayStack(1));
    Arguments arguments = {L"sheet", L"--size", L"1024"};
    arguments.insert(arguments.end(), 60, L"x.mrc");
    const ToolRun run(arguments, folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_EQ(run.output, "sheet-1.png\nsheet-2.png\n");
    // 16 + 59 * (1024 + 8 + 48 + 16); the 60th would end at 65776.
    EXPECT_EQ(PngPicture(folder, "sheet-1.png").height, 64'680U);
    EXPECT_EQ(PngPicture(folder, "sheet-2.png").height, 1'112U);
    EXPECT_THAT(folder.Files(), ElementsAre("sheet-1.png", "sheet-2.png", "x.mrc"));
}

TEST(ToolSheet, BeginsAnotherOneAfterSoManyRows)
{
    const TemporaryFolder folder;
    for (const char* const name : {"a.mrc", "b.mrc", "c.mrc", "d.mrc", "e.mrc"})
        folder.Write(name, GrayPicture(1));
    const ToolRun run(
        {L"sheet", L"--size", L"32", L"--columns", L"2", L"--rows", L"1", L"-o", L"day.1\\all.png", L"*.mrc"},
        folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_EQ(run.output, "day.1\\all-1.png\nday.1\\all-2.png\nday.1\\all-3.png\n");
    for (const auto& [name, columns] :
         {std::pair("day.1/all-1.png", 2U), {"day.1/all-2.png", 2U}, {"day.1/all-3.png", 1U}})
    {
        const PngPicture sheet(folder, name);
        EXPECT_EQ(sheet.width, 16 + columns * columnStep) << name;
        EXPECT_EQ(sheet.height, 16U + 32 + 8 + 3 * 16 + 16) << name;
        EXPECT_EQ(sheet.Part(86, 31, 4, 2), InThreeColours(grayPictures[1])) << name;
    }
}

TEST(ToolSheet, LeavesOutWhatCannotBeShownWhenThatIsWanted)
{
    const TemporaryFolder folder;
    folder.Write("cut.mrc", MrcFile().Size(4, 2, 1).Mode(6).Build());
    folder.Write("good.mrc", GrayPicture(1));
    const ToolRun run({L"sheet", L"--size", L"32", L"--only-readable", L"cut.mrc", L"good.mrc"},
                      folder.Path());
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.error, StartsWith("lumora: cut.mrc: "));
    const PngPicture sheet(folder, "sheet.png");
    EXPECT_EQ(sheet.width, 16 + columnStep);
    EXPECT_EQ(sheet.Part(86, 31, 4, 2), InThreeColours(grayPictures[1]));
}

} // namespace
