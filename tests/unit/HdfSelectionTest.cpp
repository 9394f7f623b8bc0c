#include "formats/HdfSelection.h"
#include "support/DiagnosticLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

HdfImageRun Frames(const std::string& path, uint32_t width, uint32_t height, uint64_t count = 1)
{
    return {{.width = width, .height = height, .path = path}, count};
}

/// The entries as texts, each with its frame's number.
std::vector<std::string> Selected(std::vector<HdfImageRun> runs)
{
    std::vector<std::string> texts;
    for (const HdfImageEntry& entry : SelectHdfEntries(std::move(runs), false))
        texts.push_back(entry.path + " " + std::to_string(entry.frameInSeries));
    return texts;
}

std::vector<std::string> Lines(std::vector<HdfImageRun> runs, bool isReductionTold)
{
    DiagnosticLines diagnostics;
    [[maybe_unused]] const auto entries = SelectHdfEntries(std::move(runs), isReductionTold);
    return diagnostics.Take();
}

TEST(HdfSelection, OfNothingIsNothing)
{
    EXPECT_THAT(Selected({}), IsEmpty());
}

TEST(HdfSelection, KeepsASingleEntryWhereverItLies)
{
    EXPECT_THAT(Selected({Frames("/image", 40, 40)}), ElementsAre("/image 0"));
}

TEST(HdfSelection, PutsTheFirstOfTheLargestEntriesFirst)
{
    EXPECT_THAT(
        Selected({Frames("/image a", 40, 40), Frames("/image b", 40, 80), Frames("/image c", 80, 40)}),
        ElementsAre("/image b 0", "/image a 0", "/image c 0"));
    EXPECT_THAT(Selected({Frames("/image a", 40, 40), Frames("/image b", 32, 32)}),
                ElementsAre("/image a 0", "/image b 0"));
}

TEST(HdfSelection, PutsOnlyTheFirstFrameOfTheLargestSeriesFirst)
{
    EXPECT_THAT(Selected({Frames("/image", 40, 40), Frames("/images/Data", 64, 64, 3)}),
                ElementsAre("/images/Data 0", "/image 0", "/images/Data 1", "/images/Data 2"));
}

TEST(HdfSelection, PutsTheThumbnailFirst)
{
    EXPECT_THAT(
        Selected({Frames("/Image", 4096, 4096), Frames("/THUMBNAIL.jpg", 8, 8), Frames("/image", 40, 40)}),
        ElementsAre("/THUMBNAIL.jpg 0", "/Image 0", "/image 0"));
}

TEST(HdfSelection, PutsTheLastOfSeveralThumbnailsFirst)
{
    EXPECT_THAT(Selected({Frames("/THUMBNAIL.JPG", 80, 80), Frames("/Thumbnail.jpg", 8, 8),
                          Frames("/image", 40, 40)}),
                ElementsAre("/Thumbnail.jpg 0", "/THUMBNAIL.JPG 0", "/image 0"));
}

TEST(HdfSelection, KeepsOnlyTheImageGroupAndTheThumbnail)
{
    EXPECT_THAT(Selected({Frames("/DATA/Image/a", 40, 40), Frames("/Preview image", 4096, 4096),
                          Frames("/THUMBNAIL.JPG", 8, 8), Frames("/Thumbnail.jpg", 8, 8),
                          Frames("/data/image/b", 80, 80), Frames("/data/images", 90, 90),
                          Frames("/more/data/image/c", 90, 90)}),
                ElementsAre("/Thumbnail.jpg 0", "/DATA/Image/a 0", "/data/image/b 0"));
}

TEST(HdfSelection, ChoosesTheLargestEntryOfTheImageGroup)
{
    EXPECT_THAT(Selected({Frames("/an image", 4096, 4096), Frames("/Data/Image/a", 40, 40),
                          Frames("/Data/Image/b", 80, 80)}),
                ElementsAre("/Data/Image/b 0", "/Data/Image/a 0"));
}

TEST(HdfSelection, KeepsTheFirst250Entries)
{
    const std::vector<HdfImageRun> runs = {Frames("/a/image/Data", 40, 40, 249), Frames("/b/image", 64, 64),
                                           Frames("/c/image", 40, 40)};
    const std::vector<std::string> selected = Selected(runs);
    ASSERT_EQ(selected.size(), 250U);
    EXPECT_EQ(selected[0], "/b/image 0");
    EXPECT_EQ(selected[1], "/a/image/Data 0");
    EXPECT_EQ(selected[249], "/a/image/Data 248");
    EXPECT_THAT(Lines(runs, true), ElementsAre("[Lumora] HDF: Reduced images to 250 (found: 251)"));
    EXPECT_THAT(Lines(runs, false), IsEmpty());
}

TEST(HdfSelection, SaysNothingOf250Entries)
{
    const std::vector<HdfImageRun> runs = {Frames("/image/Data", 40, 40, 250)};
    EXPECT_EQ(Selected(runs).size(), 250U);
    EXPECT_THAT(Lines(runs, true), IsEmpty());
}

TEST(HdfSelection, TellsHowManyEntriesThereWereBeforeTheChoice)
{
    EXPECT_THAT(Lines({Frames("/image", 40, 40, 10), Frames("/data/image/Data", 40, 40, 260)}, true),
                ElementsAre("[Lumora] HDF: Reduced images to 250 (found: 270)"));
    EXPECT_THAT(Lines({Frames("/image", 40, 40, 300), Frames("/data/image/Data", 40, 40, 50)}, true),
                IsEmpty());
}

TEST(HdfSelection, TakesNoTimeForFramesThatAreOnlyPromised)
{
    constexpr uint64_t most = UINT64_MAX;
    const std::vector<HdfImageRun> runs = {Frames("/image a", 40, 40, most),
                                           Frames("/image b", 64, 64, most)};
    const std::vector<std::string> selected = Selected(runs);
    ASSERT_EQ(selected.size(), 250U);
    EXPECT_EQ(selected[0], "/image b 0");
    EXPECT_EQ(selected[249], "/image a 248");
}

} // namespace
