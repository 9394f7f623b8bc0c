#include "core/display/DynamicRangeCalculator.h"
#include "support/display/HeldImage.h"
#include "support/streams/DiagnosticLines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

const Lines silence = {};
const Lines zeroRange = {"[Lumora] The found dynamic range is zero"};
const Lines wideRange = {"[Lumora] The found dynamic range is larger than 64k"};
const Lines tooWideRange = {"[Lumora] The dynamic range is too high for calculating the exact histogram"};

/// A value and how many samples have it.
struct Group
{
    uint32_t value;
    size_t count;
};

/// What a calculation gives.
struct Range
{
    uint32_t low;
    uint32_t high;
    Lines lines;

    bool operator==(const Range&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Range& range)
{
    return stream << range.low << " to " << range.high << ", lines " << testing::PrintToString(range.lines);
}

/// An image of these samples; its range is theirs.
HeldImage<unsigned int> ImageOf(std::initializer_list<Group> groups)
{
    std::vector<uint32_t> samples;
    for (const Group& group : groups)
        samples.insert(samples.end(), group.count, group.value);
    const auto [smallest, largest] = std::minmax_element(samples.begin(), samples.end());
    const uint32_t minimum = *smallest;
    const uint32_t maximum = *largest;
    const auto width = static_cast<uint32_t>(samples.size());
    return {width, 1, std::move(samples), minimum, maximum};
}

using Pass = void (DynamicRangeCalculator::*)(const Image<unsigned int>&);

Range Compute(Pass pass, const Image<unsigned int>& image, uint32_t low, uint32_t high)
{
    DynamicRangeCalculator calculator{low, high};
    DiagnosticLines diagnostics;
    (calculator.*pass)(image);
    return {calculator.low, calculator.high, diagnostics.Take()};
}

Range Exact(const Image<unsigned int>& image, uint32_t low, uint32_t high)
{
    return Compute(&DynamicRangeCalculator::ComputeExactRange, image, low, high);
}

Range Exact(std::initializer_list<Group> groups)
{
    const HeldImage<unsigned int> image = ImageOf(groups);
    return Exact(image, image.minimum, image.maximum);
}

Range Coarse(const Image<unsigned int>& image)
{
    return Compute(&DynamicRangeCalculator::ComputeCoarseRange, image, image.minimum, image.maximum);
}

Range Coarse(std::initializer_list<Group> groups)
{
    return Coarse(ImageOf(groups));
}

Range Either(std::initializer_list<Group> groups)
{
    const HeldImage<unsigned int> image = ImageOf(groups);
    return Compute(&DynamicRangeCalculator::ComputeRange, image, image.minimum, image.maximum);
}

TEST(DynamicRangeCalculator, StartsWithTheGivenRange)
{
    const DynamicRangeCalculator calculator{7, 5};
    EXPECT_EQ(calculator.low, 7U);
    EXPECT_EQ(calculator.high, 5U);
}

TEST(ExactRange, OfAConstantImageIsZero)
{
    EXPECT_EQ(Exact({{1234, 10}}), (Range{1234, 1234, zeroRange}));
    EXPECT_EQ(Exact({{0, 1}}), (Range{0, 0, zeroRange}));
    EXPECT_EQ(Exact({{UINT32_MAX, 3}}), (Range{UINT32_MAX, UINT32_MAX, zeroRange}));
}

TEST(ExactRange, NeverAddsTheFirstBinFromTheTop)
{
    EXPECT_EQ(Exact({{0, 5}, {100, 5}}), (Range{0, 100, silence}));
    EXPECT_EQ(Exact({{1000, 5}, {1100, 5}}), (Range{1000, 1100, silence}));
}

TEST(ExactRange, BeginsOneBelowTheDarkBinAndEndsOnTheBrightOne)
{
    // One of 2000 at either end: 0.9995 is passed at 1000 from the top and at 1100 from the bottom.
    EXPECT_EQ(Exact({{0, 1}, {1000, 999}, {1100, 999}, {50000, 1}}), (Range{999, 1100, silence}));
    // The dark bin is the one above the first.
    EXPECT_EQ(Exact({{0, 1}, {1, 1999}, {9, 1}}), (Range{0, 1, silence}));
}

TEST(ExactRange, NeedsMoreThanTheThreshold)
{
    // Ends of exactly 0.001 stay: 999 of 1000 are not more than 0.999.
    EXPECT_EQ(Exact({{0, 999}, {500, 1}}), (Range{0, 500, silence}));
    EXPECT_EQ(Exact({{0, 1}, {500, 999}}), (Range{0, 500, silence}));
    // 9991 of 10000 are.
    EXPECT_EQ(Exact({{0, 9}, {500, 9991}}), (Range{499, 500, silence}));
}

TEST(ExactRange, OfAnImageThatIsNearlyConstantlyBlackIsItsOwn)
{
    // Both ends fall on 0.
    EXPECT_EQ(Exact({{0, 9999}, {500, 1}}), (Range{0, 500, zeroRange}));
    EXPECT_EQ(Exact({{70, 9999}, {500, 1}}), (Range{70, 500, zeroRange}));
}

TEST(ExactRange, LowersTheThresholdUntilTheRangeIsNarrow)
{
    // The outer shares are cut by 0.999, 0.99, 0.95 and 0.9, in this order.
    EXPECT_EQ(Exact({{0, 5}, {100000, 9990}, {200000, 5}}), (Range{99999, 100000, silence}));
    EXPECT_EQ(Exact({{0, 5}, {100000, 990}, {200000, 5}}), (Range{99999, 100000, silence}));
    EXPECT_EQ(Exact({{0, 20}, {100000, 960}, {200000, 20}}), (Range{99999, 100000, silence}));
    EXPECT_EQ(Exact({{0, 60}, {100000, 880}, {200000, 60}}), (Range{99999, 100000, silence}));
    EXPECT_EQ(Exact({{0, 99}, {100000, 802}, {200000, 99}}), (Range{99999, 100000, silence}));
    EXPECT_EQ(Exact({{0, 101}, {100000, 798}, {200000, 101}}), (Range{0, 200000, wideRange}));
}

TEST(ExactRange, StopsAtTheFirstThresholdThatIsNarrowEnough)
{
    // At 0.999 the range is 1000 to 66535; at 0.99 it would be 49999 to 50000.
    EXPECT_EQ(Exact({{0, 1}, {1001, 50}, {50000, 9900}, {66535, 50}, {70000, 1}}),
              (Range{1000, 66535, silence}));
    // One wider, and the next threshold is tried.
    EXPECT_EQ(Exact({{0, 1}, {1001, 50}, {50000, 9900}, {66536, 50}, {70000, 1}}),
              (Range{49999, 50000, silence}));
}

TEST(ExactRange, KeepsASideThatNoThresholdReaches)
{
    // From the top only 0.7 are ever added, so low stays at 10; from the bottom 0.95 is passed at 300.
    EXPECT_EQ(Exact({{10, 300}, {300, 660}, {200000, 40}}), (Range{10, 300, silence}));
    // From the top only 0.96 are ever added, which pass 0.95 at 199000.
    EXPECT_EQ(Exact({{10, 40}, {199000, 660}, {200000, 300}}), (Range{198999, 200000, silence}));
}

TEST(ExactRange, OfMoreThan65535IsTheImagesOwn)
{
    EXPECT_EQ(Exact({{5, 1}, {65540, 1}}), (Range{5, 65540, silence}));
    EXPECT_EQ(Exact({{5, 1}, {65541, 1}}), (Range{5, 65541, wideRange}));
    EXPECT_EQ(Exact({{5, 1}, {262148, 1}}), (Range{5, 262148, wideRange}));
    // The outer samples would be cut, but the rest is too wide at every threshold.
    EXPECT_EQ(Exact({{0, 1}, {50000, 5000}, {150000, 5000}, {262143, 1}}), (Range{0, 262143, wideRange}));
}

TEST(ExactRange, GivesTheImagesOwnRangeWhereItStartedWithAnother)
{
    const HeldImage<unsigned int> image = ImageOf({{0, 1}, {500, 5000}, {100000, 1}});
    EXPECT_EQ(Exact(image, 500, 600), (Range{0, 100000, zeroRange}));
    EXPECT_EQ(Exact(image, 700, 70700), (Range{0, 100000, wideRange}));
}

TEST(ExactRange, IgnoresSamplesOutsideButDividesByAll)
{
    // 400 of 1000 samples are inside, so no sum passes 0.9 and the range stays.
    const HeldImage<unsigned int> image = ImageOf({{0, 300}, {500, 200}, {550, 200}, {UINT32_MAX, 300}});
    EXPECT_EQ(Exact(image, 400, 600), (Range{400, 600, silence}));
    // The ends are inside: 9995 of 10000 samples at the high end, and with half of them at the low end.
    EXPECT_EQ(Exact(ImageOf({{0, 2}, {600, 9995}, {601, 3}}), 400, 600), (Range{599, 600, silence}));
    EXPECT_EQ(Exact(ImageOf({{399, 5}, {400, 5000}, {500, 4995}}), 400, 600), (Range{400, 500, silence}));
}

TEST(ExactRange, CountsFromALowEndThatLiesAboveTheHighOne)
{
    // The range of 11 wraps: 2^32 - 6 to 5. From the top 0.9995 is passed at 2^32 - 2, from the bottom at 3.
    const HeldImage<unsigned int> image = ImageOf({{0xFFFFFFFA, 1}, {0xFFFFFFFE, 999}, {3, 999}, {5, 1}});
    EXPECT_EQ(Exact(image, 0xFFFFFFFA, 5), (Range{0xFFFFFFFD, 3, silence}));
}

TEST(CoarseRange, SpansTheBinsThatPass98Percent)
{
    // From the top 0.98 are added without the first bin, which is not more than 0.98.
    EXPECT_EQ(Coarse({{0, 2}, {500000, 49}, {900000, 49}}), (Range{0, 901119, tooWideRange}));
    // Bin 30 begins at 491520, and bin 54, in which 0.99 are passed, ends at 901119.
    EXPECT_EQ(Coarse({{0, 1}, {500000, 99}, {900000, 99}, {2000000, 1}}),
              (Range{491520, 901119, tooWideRange}));
    // Counted from a minimum of 7 all is 7 higher.
    EXPECT_EQ(Coarse({{7, 1}, {500007, 99}, {900007, 99}, {2000007, 1}}),
              (Range{491527, 901126, tooWideRange}));
}

TEST(CoarseRange, NeedsMoreThan98Percent)
{
    // 0.98 itself is not enough from the bottom, nor from the top.
    EXPECT_EQ(Coarse({{0, 98}, {900000, 2}}), (Range{0, 901119, tooWideRange}));
    EXPECT_EQ(Coarse({{0, 2}, {900000, 98}}), (Range{0, 901119, tooWideRange}));
}

TEST(CoarseRange, HasNoLowerThreshold)
{
    EXPECT_EQ(Coarse({{0, 3}, {500000, 94}, {900000, 3}}), (Range{0, 901119, tooWideRange}));
}

TEST(CoarseRange, NeverAddsTheFirstBinFromTheTop)
{
    // All but 0.01 are in the first bin, whose end the range takes; the exact pass leaves that.
    EXPECT_EQ(Coarse({{100, 99}, {900000, 1}}), (Range{100, 16483, silence}));
}

TEST(CoarseRange, ReachesBeyondTheImageInItsLastBin)
{
    EXPECT_EQ(Coarse({{0, 1}, {262144, 1}}), (Range{0, 278527, tooWideRange}));
    EXPECT_EQ(Coarse({{0, 1}, {UINT32_MAX, 1}}), (Range{0, UINT32_MAX, tooWideRange}));
}

TEST(CoarseRange, WrapsWhereItsLastBinReachesBeyond32Bits)
{
    // The last bin begins at 5 + 262143 * 16384. In it the exact pass finds 0.99, which is not enough.
    EXPECT_EQ(Coarse({{5, 1}, {UINT32_MAX, 99}}), (Range{4294950917, 4, silence}));
    // The exact pass finds 0.9995 in one value.
    EXPECT_EQ(Coarse({{5, 1}, {UINT32_MAX, 1999}}), (Range{UINT32_MAX - 1, UINT32_MAX, silence}));
}

TEST(CoarseRange, IsRefinedByTheExactPassBelow262144)
{
    // Bins 30 and 31: the exact pass cuts one sample of 4000 at either end.
    EXPECT_EQ(Coarse({{0, 1}, {500000, 2000}, {510000, 1998}, {900000, 1}}),
              (Range{499999, 510000, silence}));
    // Two halves at a distance above 65535 are as wide for it as without the coarse pass.
    EXPECT_EQ(Coarse({{0, 1}, {500000, 2000}, {600000, 1998}, {900000, 1}}), (Range{0, 900000, wideRange}));
}

TEST(CoarseRange, GoesOnWithTheExactPassUpToSixteenBins)
{
    // Bins 1 to 16 are 262143 wide, and the exact pass finds that too wide.
    EXPECT_EQ(Coarse({{0, 1}, {16384, 500}, {262144, 500}, {900000, 1}}), (Range{0, 900000, wideRange}));
    // Bins 1 to 17 are left as they are.
    EXPECT_EQ(Coarse({{0, 1}, {16384, 500}, {278528, 500}, {900000, 1}}),
              (Range{16384, 294911, tooWideRange}));
}

TEST(CoarseRange, OfANarrowImageIsThatOfTheExactPass)
{
    // One bin that is never added from the top; its end is far above the image.
    EXPECT_EQ(Coarse({{100, 10}, {200, 10}}), (Range{100, 200, silence}));
    EXPECT_EQ(Coarse({{100, 10}}), (Range{100, 100, zeroRange}));
}

TEST(DynamicRangeCalculator, TakesTheCoarsePassFrom262144On)
{
    EXPECT_EQ(Either({{10, 1}, {10 + 262143, 1}}), (Range{10, 10 + 262143, wideRange}));
    EXPECT_EQ(Either({{10, 1}, {10 + 262144, 1}}), (Range{10, 10 + 278527, tooWideRange}));
    EXPECT_EQ(Either({{0, 1}, {UINT32_MAX, 1}}), (Range{0, UINT32_MAX, tooWideRange}));
}

/// One sample in `period` is 500000, of which `replaced` are 0 like all others.
HeldImage<unsigned int> PeriodicImage(uint32_t sampleCount, size_t period, size_t replaced = 0)
{
    std::vector<uint32_t> samples(sampleCount);
    for (size_t i = replaced * period; i < sampleCount; i += period)
        samples[i] = 500000;
    return {sampleCount, 1, std::move(samples), 0, 500000};
}

// When only the samples of 500000 are counted, the range is that of bin 30; the exact pass, which counts
// all, finds too few of them to change it.
const Range bin30 = {491520, 507903, silence};
const Range fromZero = {0, 507903, tooWideRange};

TEST(CoarseRange, CountsOneOfFourSamplesFrom4194304On)
{
    EXPECT_EQ(Coarse(PeriodicImage(4194303, 4)), fromZero);
    EXPECT_EQ(Coarse(PeriodicImage(4194304, 4)), bin30);
}

TEST(CoarseRange, CountsOneOfSixteenSamplesFrom16777216On)
{
    EXPECT_EQ(Coarse(PeriodicImage(16777215, 16)), fromZero);
    EXPECT_EQ(Coarse(PeriodicImage(16777216, 16)), bin30);
}

TEST(CoarseRange, DividesByTheWholeStepsOfTheSampleCount)
{
    // 4194307 samples are 1048576 steps, though 1048577 are visited. 1027605 of them are more than 0.98 of
    // the first and less than 0.98 of a quarter of the samples.
    EXPECT_EQ(Coarse(PeriodicImage(4194307, 4, 1048577 - 1027605)), bin30);
    EXPECT_EQ(Coarse(PeriodicImage(4194307, 4, 1048577 - 1027604)), fromZero);
}

} // namespace
