#include "support/FileBytes.h"
#include "support/TestFolders.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/support/PngPicture.h"
#include "windows/tool/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <set>

using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

using Names = std::set<std::string>;

const std::filesystem::path sourceTree = TestFolder("source");
const std::filesystem::path samples = sourceTree / "samples";
const std::filesystem::path pictures = sourceTree / "docs" / "pictures";

// What the sheet in the guide has been made with, and what its cells measure then: a picture of 160 x 160
// pixels, 8 pixels below it three lines of text of 16 pixels, and 16 pixels around.
const std::vector<std::wstring> sheetArguments = {L"sheet", L"--size", L"160", L"--columns", L"6"};
constexpr uint32_t rowStep = 232;
constexpr uint32_t textTop = 16 + 160 + 8;
constexpr uint32_t textHeight = 48;

Names FilesIn(const std::filesystem::path& folder)
{
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    EXPECT_THAT(names, testing::Not(IsEmpty())) << folder;
    return names;
}

std::string TextOf(const char* document)
{
    const std::vector<uint8_t> bytes = FileBytes(sourceTree / document);
    EXPECT_THAT(bytes, testing::Not(IsEmpty())) << document;
    return {bytes.begin(), bytes.end()};
}

/// Runs the tool, which must succeed without a word of complaint, on all samples.
void RunOnSamples(std::vector<std::wstring> arguments, const TemporaryFolder& folder)
{
    arguments.push_back(samples.wstring());
    const ToolRun run(arguments, folder.Path());
    EXPECT_EQ(run.exitCode, 0U);
    EXPECT_THAT(run.error, IsEmpty());
}

TEST(SamplePictures, AreWhatTheToolRenders)
{
    const TemporaryFolder folder;
    RunOnSamples({L"render"}, folder);
    RunOnSamples({L"render", L"--frame", L"all"}, folder);
    for (const std::string& name : FilesIn(pictures))
    {
        if (name == "sheet.png" || name == "thunar.png")
            continue;
        const PngPicture rendered(folder, name);
        const PngPicture shown(pictures / name);
        EXPECT_EQ(shown.width, rendered.width) << name;
        EXPECT_EQ(shown.height, rendered.height) << name;
        EXPECT_TRUE(shown.pixels == rendered.pixels) << name;
    }
}

// The text is left out: it is written in the font that the machine has.
TEST(SamplePictures, AreOnTheSheet)
{
    const TemporaryFolder folder;
    RunOnSamples(sheetArguments, folder);
    const PngPicture made(folder, "sheet.png");
    const PngPicture shown(pictures / "sheet.png");
    ASSERT_EQ(shown.width, made.width);
    ASSERT_EQ(shown.height, made.height);
    for (uint32_t y = 0; y < made.height; ++y)
    {
        const uint32_t inRow = y % rowStep;
        if (inRow >= textTop && inRow < textTop + textHeight)
            continue;
        ASSERT_TRUE(shown.Part(0, y, shown.width, 1) == made.Part(0, y, made.width, 1)) << "in line " << y;
    }
}

TEST(SamplePictures, StandWithTheirNamesInTheReadme)
{
    const std::string readme = TextOf("README.md");
    for (const std::string& sample : FilesIn(samples))
    {
        const std::string stem = std::filesystem::path(sample).stem().string();
        EXPECT_NE(readme.find("](docs/pictures/" + stem + ".png) `" + sample + "`"), std::string::npos)
            << sample;
    }
}

TEST(SamplePictures, AreShownInADocument)
{
    const std::string documents = TextOf("README.md") + TextOf("docs/guide.md");
    const std::regex link(R"(\]\((?:docs/)?pictures/([^)]*)\))");
    Names shown;
    for (std::sregex_iterator match(documents.begin(), documents.end(), link), end; match != end; ++match)
        shown.insert((*match)[1]);
    EXPECT_THAT(FilesIn(pictures), ElementsAreArray(shown));
}

} // namespace
