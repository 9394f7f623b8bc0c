#include "lumora/console/Progress.h"

#include <gtest/gtest.h>

using Lumora::ProgressLine;

namespace {

TEST(ProgressLine, SaysNothingOfTheRateInTheFirstSecond)
{
    EXPECT_EQ(ProgressLine(3, 10, 0.0, L"a.mrc"), L"3 of 10: a.mrc");
    EXPECT_EQ(ProgressLine(3, 10, 0.99, L"a.mrc"), L"3 of 10: a.mrc");
    EXPECT_EQ(ProgressLine(3, std::nullopt, 0.99, L"a.mrc"), L"3: a.mrc");
    EXPECT_EQ(ProgressLine(3, 10, 1.0, L"a.mrc"), L"3 of 10, 3 a second, 3 s left: a.mrc");
}

TEST(ProgressLine, KnowsNoRestWithoutTheTotal)
{
    EXPECT_EQ(ProgressLine(300, std::nullopt, 2.0, L"in\\b.ser"), L"300, 150 a second: in\\b.ser");
}

TEST(ProgressLine, TakesATimeInWhichAFileIsDone)
{
    EXPECT_EQ(ProgressLine(4, 5, 4.0, L"a"), L"4 of 5, 1 a second, 1 s left: a");
    EXPECT_EQ(ProgressLine(1, 3, 16.0, L"a"), L"1 of 3, 4 a minute, 32 s left: a"); // 3.75
    EXPECT_EQ(ProgressLine(1, 2, 60.0, L"a"), L"1 of 2, 1 a minute, 1 min 0 s left: a");
    EXPECT_EQ(ProgressLine(1, 2, 128.0, L"a"), L"1 of 2, 28 an hour, 2 min 8 s left: a"); // 28.125
}

TEST(ProgressLine, ShowsTheTwoLargestUnitsOfTheRest)
{
    EXPECT_EQ(ProgressLine(4, 4, 2.0, L"a"), L"4 of 4, 2 a second, 0 s left: a");
    EXPECT_EQ(ProgressLine(2, 61, 2.0, L"a"), L"2 of 61, 1 a second, 59 s left: a");
    EXPECT_EQ(ProgressLine(2, 62, 2.0, L"a"), L"2 of 62, 1 a second, 1 min 0 s left: a");
    EXPECT_EQ(ProgressLine(2, 322, 2.0, L"a"), L"2 of 322, 1 a second, 5 min 20 s left: a");
    EXPECT_EQ(ProgressLine(2, 3601, 2.0, L"a"), L"2 of 3601, 1 a second, 59 min 59 s left: a");
    EXPECT_EQ(ProgressLine(2, 3602, 2.0, L"a"), L"2 of 3602, 1 a second, 1 h 0 min left: a");
    EXPECT_EQ(ProgressLine(2, 90'002, 2.0, L"a"), L"2 of 90002, 1 a second, 25 h 0 min left: a");
    // 59.5 s: whoever waits for so long as it says shall not wait longer.
    EXPECT_EQ(ProgressLine(2, 121, 1.0, L"a"), L"2 of 121, 2 a second, 1 min 0 s left: a");
}

} // namespace
