#include "lumora/arguments/FrameSelection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using Lumora::FrameSelection;
using testing::ElementsAreArray;

namespace {

constexpr uint32_t largest = 4'294'967'295;

/// All frames that are wanted of a file with so many, in the order in which they are found.
std::vector<uint32_t> Frames(const FrameSelection& selection, uint32_t frameCount)
{
    std::vector<uint32_t> frames;
    std::optional<uint32_t> frame = selection.Next(0, frameCount);
    // The limit ends the test if a selection never ends.
    for (; frame && frames.size() < 100; frame = selection.Next(*frame + 1, frameCount))
        frames.push_back(*frame);
    return frames;
}

TEST(FrameSelection, FindsEachFrameOnceInAscendingOrder)
{
    struct Row
    {
        const wchar_t* text;
        uint32_t frameCount;
        std::vector<uint32_t> frames;
    };
    const Row rows[] = {
        {L"all", 4, {0, 1, 2, 3}},
        {L"all", 0, {}},
        {L"5", 6, {5}},
        {L"5", 5, {}},
        {L"007", 8, {7}},
        {L"0-9", 3, {0, 1, 2}},
        {L"2-3", 9, {2, 3}},
        {L"2-2", 9, {2}},
        {L"0-3,7", 20, {0, 1, 2, 3, 7}},
        {L"7,0-3", 20, {0, 1, 2, 3, 7}},
        {L"all/10", 25, {0, 10, 20}},
        {L"all/10", 20, {0, 10}},
        {L"3-9/2", 20, {3, 5, 7, 9}},
        {L"3-8/2", 20, {3, 5, 7}},
        {L"3-9/7", 20, {3}},
        {L"3/2", 20, {3}},
        // Ranges that overlap
        {L"0-4,2-6", 20, {0, 1, 2, 3, 4, 5, 6}},
        {L"0-6/3,0-6/2", 20, {0, 2, 3, 4, 6}},
        {L"1,all/4,1", 9, {0, 1, 4, 8}},
    };
    for (const Row& row : rows)
    {
        const std::optional<FrameSelection> selection = FrameSelection::Parse(row.text);
        ASSERT_TRUE(selection) << std::filesystem::path(row.text);
        EXPECT_THAT(Frames(*selection, row.frameCount), ElementsAreArray(row.frames))
            << std::filesystem::path(row.text) << " of " << row.frameCount;
    }
}

TEST(FrameSelection, RefusesAllOtherTexts)
{
    for (const wchar_t* const text : {L"",
                                      L",",
                                      L"1,",
                                      L",1",
                                      L"1,,2",
                                      L"-1",
                                      L"-",
                                      L"1-",
                                      L"3-1",
                                      L"1-2-3",
                                      L"/2",
                                      L"1/",
                                      L"1/-1",
                                      L"all/0",
                                      L"0-9/0",
                                      L"all/",
                                      L"all4",
                                      L"All",
                                      L"all-3",
                                      L"0-all",
                                      L" 1",
                                      L"1 ",
                                      L"+1",
                                      L"1.0",
                                      L"0x1",
                                      L"4294967296",
                                      L"0-4294967296",
                                      L"all/4294967296",
                                      L"18446744073709551617"})
        EXPECT_FALSE(FrameSelection::Parse(text)) << '"' << std::filesystem::path(text).string() << '"';
}

TEST(FrameSelection, HoldsAtTheLimitsOf32Bits)
{
    EXPECT_EQ(FrameSelection::Parse(L"4294967295")->Next(0, largest), std::nullopt);
    EXPECT_EQ(FrameSelection::Parse(L"4294967294")->Next(0, largest), largest - 1);

    const FrameSelection last = *FrameSelection::Parse(L"4294967290-4294967295/3");
    EXPECT_EQ(last.Next(0, largest), largest - 5);
    EXPECT_EQ(last.Next(largest - 4, largest), largest - 2);
    // In 32 bits, the next ones would be 0 and 1.
    EXPECT_EQ(last.Next(largest - 1, largest), std::nullopt);
    EXPECT_EQ(FrameSelection::Parse(L"1-4294967295/4294967295")->Next(2, largest), std::nullopt);
    EXPECT_EQ(FrameSelection::Parse(L"2-4294967295/4294967295")->Next(3, largest), std::nullopt);
}

TEST(FrameSelection, KnowsASingleFrame)
{
    EXPECT_EQ(FrameSelection().SingleFrame(), 0U);
    EXPECT_EQ(FrameSelection::Parse(L"5")->SingleFrame(), 5U);
    EXPECT_EQ(FrameSelection::Parse(L"5-5")->SingleFrame(), 5U);
    EXPECT_EQ(FrameSelection::Parse(L"5-6")->SingleFrame(), std::nullopt);
    EXPECT_EQ(FrameSelection::Parse(L"5,6")->SingleFrame(), std::nullopt);
    EXPECT_EQ(FrameSelection::All().SingleFrame(), std::nullopt);
}

} // namespace
