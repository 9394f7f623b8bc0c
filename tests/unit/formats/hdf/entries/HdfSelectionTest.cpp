#include "formats/hdf/entries/HdfSelection.h"
#include "support/streams/DiagnosticLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Dataset
{
    std::string path;
    uint32_t width;
    uint32_t height;
    uint64_t frames = 1;
};

HdfSelection SelectionOf(const std::vector<Dataset>& datasets)
{
    HdfSelection selection;
    for (const Dataset& dataset : datasets)
        selection.Add({.width = dataset.width, .height = dataset.height, .path = dataset.path},
                      dataset.frames);
    return selection;
}

/// The entries as texts, each with its frame's number.
std::vector<std::string> Selected(const std::vector<Dataset>& datasets)
{
    std::vector<std::string> texts;
    for (const HdfImageEntry& entry : SelectionOf(datasets).Entries(false))
        texts.push_back(entry.path + " " + std::to_string(entry.frameInSeries));
    return texts;
}

std::vector<std::string> Lines(const std::vector<Dataset>& datasets, bool isReductionTold)
{
    DiagnosticLines diagnostics;
    [[maybe_unused]] const auto entries = SelectionOf(datasets).Entries(isReductionTold);
    return diagnostics.Take();
}

TEST(HdfSelection, OfNothingIsNothing)
{
    EXPECT_THAT(Selected({}), IsEmpty());
}

TEST(HdfSelection, KeepsASingleEntryWhereverItLies)
{
    EXPECT_THAT(Selected({{"/image", 40, 40}}), ElementsAre("/image 0"));
}

TEST(HdfSelection, PutsTheFirstOfTheLargestEntriesFirst)
{
    EXPECT_THAT(Selected({{"/image a", 40, 40}, {"/image b", 40, 80}, {"/image c", 80, 40}}),
                ElementsAre("/image b 0", "/image a 0", "/image c 0"));
    EXPECT_THAT(Selected({{"/image a", 40, 40}, {"/image b", 32, 32}}),
                ElementsAre("/image a 0", "/image b 0"));
}

TEST(HdfSelection, PutsOnlyTheFirstFrameOfTheLargestSeriesFirst)
{
    EXPECT_THAT(Selected({{"/image", 40, 40}, {"/images/Data", 64, 64, 3}}),
                ElementsAre("/images/Data 0", "/image 0", "/images/Data 1", "/images/Data 2"));
}

TEST(HdfSelection, PutsTheThumbnailFirst)
{
    EXPECT_THAT(Selected({{"/Image", 4096, 4096}, {"/THUMBNAIL.jpg", 8, 8}, {"/image", 40, 40}}),
                ElementsAre("/THUMBNAIL.jpg 0", "/Image 0", "/image 0"));
}

TEST(HdfSelection, PutsTheLastOfSeveralThumbnailsFirst)
{
    EXPECT_THAT(Selected({{"/THUMBNAIL.JPG", 80, 80}, {"/Thumbnail.jpg", 8, 8}, {"/image", 40, 40}}),
                ElementsAre("/Thumbnail.jpg 0", "/THUMBNAIL.JPG 0", "/image 0"));
}

TEST(HdfSelection, KeepsOnlyTheImageGroupAndTheThumbnail)
{
    EXPECT_THAT(Selected({{"/DATA/Image/a", 40, 40},
                          {"/Preview image", 4096, 4096},
                          {"/THUMBNAIL.JPG", 8, 8},
                          {"/Thumbnail.jpg", 8, 8},
                          {"/data/image/b", 80, 80},
                          {"/data/images", 90, 90},
                          {"/more/data/image/c", 90, 90}}),
                ElementsAre("/Thumbnail.jpg 0", "/DATA/Image/a 0", "/data/image/b 0"));
}

TEST(HdfSelection, ChoosesTheLargestEntryOfTheImageGroup)
{
    EXPECT_THAT(Selected({{"/an image", 4096, 4096}, {"/Data/Image/a", 40, 40}, {"/Data/Image/b", 80, 80}}),
                ElementsAre("/Data/Image/b 0", "/Data/Image/a 0"));
}

TEST(HdfSelection, KeepsTheFirst250Entries)
{
    const std::vector<Dataset> datasets = {
        {"/a/image/Data", 40, 40, 249}, {"/b/image", 64, 64}, {"/c/image", 40, 40}};
    const std::vector<std::string> selected = Selected(datasets);
    ASSERT_EQ(selected.size(), 250U);
    EXPECT_EQ(selected[0], "/b/image 0");
    EXPECT_EQ(selected[1], "/a/image/Data 0");
    EXPECT_EQ(selected[249], "/a/image/Data 248");
    EXPECT_THAT(Lines(datasets, true), ElementsAre("[Lumora] HDF: Reduced images to 250 (found: 251)"));
    EXPECT_THAT(Lines(datasets, false), IsEmpty());
}

TEST(HdfSelection, SaysNothingOf250Entries)
{
    const std::vector<Dataset> datasets = {{"/image/Data", 40, 40, 250}};
    EXPECT_EQ(Selected(datasets).size(), 250U);
    EXPECT_THAT(Lines(datasets, true), IsEmpty());
}

TEST(HdfSelection, TellsHowManyEntriesThereWereBeforeTheChoice)
{
    EXPECT_THAT(Lines({{"/image", 40, 40, 10}, {"/data/image/Data", 40, 40, 260}}, true),
                ElementsAre("[Lumora] HDF: Reduced images to 250 (found: 270)"));
    EXPECT_THAT(Lines({{"/image", 40, 40, 300}, {"/data/image/Data", 40, 40, 50}}, true), IsEmpty());
}

TEST(HdfSelection, PutsTheFirstOfTheLargestEntriesFirstHoweverManyAreBefore)
{
    const std::vector<std::string> selected = Selected({{"/a/image/Data", 40, 40, 250},
                                                        {"/b/image", 40, 40},
                                                        {"/c/image", 50, 50},
                                                        {"/d/image", 64, 64, 2},
                                                        {"/e/image", 64, 64},
                                                        {"/f/image", 60, 60}});
    ASSERT_EQ(selected.size(), 250U);
    EXPECT_EQ(selected[0], "/d/image 0");
    EXPECT_EQ(selected[1], "/a/image/Data 0");
    EXPECT_EQ(selected[249], "/a/image/Data 248");
}

TEST(HdfSelection, PutsTheThumbnailFirstHoweverManyAreBefore)
{
    for (const std::string group : {"/image", "/data/image"})
    {
        const std::vector<std::string> selected =
            Selected({{group + "/Data", 40, 40, 300}, {"/image", 64, 64, 300}, {"/thumbnail.jpg", 8, 8}});
        ASSERT_EQ(selected.size(), 250U);
        EXPECT_EQ(selected[0], "/thumbnail.jpg 0");
        EXPECT_EQ(selected[249], group + "/Data 248");
    }
}

TEST(HdfSelection, TakesNoTimeForFramesThatAreOnlyPromised)
{
    constexpr uint64_t most = UINT64_MAX;
    const std::vector<Dataset> datasets = {{"/image a", 40, 40, most}, {"/image b", 64, 64, most}};
    const std::vector<std::string> selected = Selected(datasets);
    ASSERT_EQ(selected.size(), 250U);
    EXPECT_EQ(selected[0], "/image b 0");
    EXPECT_EQ(selected[249], "/image a 248");
}

} // namespace
