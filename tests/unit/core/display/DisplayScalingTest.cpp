#include "core/display/DisplayScaling.h"
#include "core/samples/Vectorised.h"
#include "support/RandomSeed.h"
#include "support/display/HeldImage.h"
#include "support/streams/DiagnosticLines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

/// A row of samples scaled from the display range (low, high).
FrameBytes Scaled(uint32_t low, uint32_t high, const std::vector<uint32_t>& samples)
{
    HeldImage<unsigned int> image{static_cast<uint32_t>(samples.size()), 1, samples};
    image.minimum = low;
    image.maximum = high;
    FrameBytes bytes;
    ScaleToDisplayBytes(image, bytes, false);
    return bytes;
}

TEST(ScaleToDisplayBytes, LimitsSamplesToTheRange)
{
    // The step is 1.
    EXPECT_EQ(Scaled(10, 265, {0, 9, 10, 11, 12, 264, 265, 266, UINT32_MAX}),
              (Bytes{0, 0, 0, 1, 2, 254, 255, 255, 255}));
}

TEST(ScaleToDisplayBytes, Truncates)
{
    // The step is 2: halves are cut off.
    EXPECT_EQ(Scaled(100, 610, {100, 101, 102, 103, 608, 609, 610, 611}),
              (Bytes{0, 0, 1, 1, 254, 254, 255, 255}));
    // The step is 2/255.
    EXPECT_EQ(Scaled(0, 2, {0, 1, 2, 3}), (Bytes{0, 127, 255, 255}));
}

TEST(ScaleToDisplayBytes, SpansTheWholeType)
{
    EXPECT_EQ(Scaled(0, UINT32_MAX, {0, 16843008, 16843009, 0x7FFFFFFF, 0x80000000, UINT32_MAX}),
              (Bytes{0, 0, 1, 127, 127, 255}));
}

TEST(ScaleToDisplayBytes, ShowsAnEmptyRangeAsItsLimits)
{
    // Nothing divided by nothing is black, what lies above is white.
    EXPECT_EQ(Scaled(5, 5, {4, 5, 6}), (Bytes{0, 0, 255}));
    EXPECT_EQ(Scaled(0, 0, {0, UINT32_MAX}), (Bytes{0, 255}));
}

TEST(ScaleToDisplayBytes, MeasuresARangeThatWrapsModulo2To32)
{
    // From 2^32 - 251 to 4 there are 255 steps; what has wrapped lies below the low end, not above it.
    EXPECT_EQ(Scaled(4294967045, 4, {4, 4294967045, 4294967046, UINT32_MAX, 4294967044}),
              (Bytes{0, 0, 1, 250, 0}));
}

// Most ranges are scaled by a product in place of the division. Bytes change where a level begins.
TEST(ScaleToDisplayBytes, GivesTheQuotientOfEverySample)
{
    const Vectors before = VectorsInUse();
    std::mt19937 random{RandomSeed()};
    for (int round = 0; round < 3000; ++round)
    {
        const uint32_t low = static_cast<uint32_t>(random()) >> random() % 32;
        const uint32_t high = low + (static_cast<uint32_t>(random()) >> random() % 32);
        const double step = (high - low) / 255.0;
        std::vector<uint32_t> samples;
        std::vector<uint8_t> expected;
        for (uint32_t level = 0; level <= 256; ++level)
        {
            for (int64_t beside = -2; beside <= 2; ++beside)
                samples.push_back(static_cast<uint32_t>(low + static_cast<int64_t>(level * step) + beside));
            samples.push_back(static_cast<uint32_t>(random()));
        }
        for (const uint32_t sample : samples)
        {
            const double quotient = (static_cast<double>(sample) - static_cast<double>(low)) / step;
            expected.push_back(quotient > 255 ? 255 : quotient > 0 ? static_cast<uint8_t>(quotient) : 0);
        }
        UseVectors(round % 2 == 0 ? Vectors::Avx2 : Vectors::Baseline);
        ASSERT_EQ(Scaled(low, high, samples), expected) << low << " to " << high;
    }
    UseVectors(before);
}

TEST(ScaleToDisplayBytes, FlipsRows)
{
    HeldImage<unsigned int> image{2, 3, {0, 1, 2, 3, 254, 255}};
    image.maximum = 255;
    FrameBytes bytes;
    ScaleToDisplayBytes(image, bytes, true);
    EXPECT_EQ(bytes, (Bytes{254, 255, 2, 3, 0, 1}));
    ScaleToDisplayBytes(image, bytes, false);
    EXPECT_EQ(bytes, (Bytes{0, 1, 2, 3, 254, 255}));
}

TEST(ScaleToDisplayBytes, GivesOneByteForEachSample)
{
    HeldImage<unsigned int> image{2, 1, {0, 255}};
    image.maximum = 255;
    FrameBytes longer{Bytes(9, 77)};
    ScaleToDisplayBytes(image, longer, false);
    EXPECT_EQ(longer, (Bytes{0, 255}));
}

TEST(ScaleToDisplayBytes, ThrowsWithoutSamples)
{
    for (const bool flip : {false, true})
    {
        for (const uint32_t width : {0U, 4U})
        {
            const HeldImage<unsigned int> image{width, 0, {}};
            FrameBytes bytes;
            try
            {
                ScaleToDisplayBytes(image, bytes, flip);
                ADD_FAILURE() << "nothing was thrown";
            }
            catch (const std::invalid_argument& error)
            {
                EXPECT_STREQ(error.what(), "The object is empty !");
            }
        }
    }
}

TEST(ScaleByDynamicRange, ScalesFromTheCalculatedRangeAndLeavesItInTheImage)
{
    // One sample of 2000 at either end: the range becomes 99 to 200, and the step 101/255.
    std::vector<uint32_t> samples(2000, 200);
    std::fill(samples.begin(), samples.begin() + 1000, 100);
    samples.front() = 0;
    samples.back() = 60000;
    HeldImage<unsigned int> image{1000, 2, samples};
    image.maximum = 60000;

    Bytes expected(2000, 2);
    std::fill(expected.begin(), expected.begin() + 1000, 255);
    expected.front() = 255;
    expected[1999] = 2;
    expected[999] = 255;
    expected[1000] = 0;

    FrameBytes bytes;
    DiagnosticLines diagnostics;
    ScaleByDynamicRange(image, bytes, true);
    EXPECT_EQ(diagnostics.Take(), Lines{});
    EXPECT_EQ(image.minimum, 99U);
    EXPECT_EQ(image.maximum, 200U);
    EXPECT_EQ(bytes, expected);
}

TEST(StretchContrast, LeavesPicturesOfAnotherSizeAlone)
{
    FrameBytes picture{Bytes{7, 7, 7}};
    StretchContrast(picture, 1);
    StretchContrast(picture, 2);
    StretchContrast(picture, 4);
    EXPECT_EQ(picture, (Bytes{7, 7, 7}));

    FrameBytes empty;
    StretchContrast(empty, 0);
    EXPECT_EQ(empty, Bytes{});
}

struct StretchRow
{
    const char* what;
    /// How often the picture's two values stand there, and the values.
    size_t firstCount;
    size_t secondCount;
    uint8_t first;
    uint8_t second;
    /// What becomes of the two values.
    uint8_t firstShown;
    uint8_t secondShown;
};

constexpr StretchRow stretchRows[] = {
    {"black stays", 5, 0, 0, 0, 0, 0},
    {"constant gray: low is one below it, high itself", 5, 0, 7, 7, 255, 255},
    {"constant white", 5, 0, 255, 255, 255, 255},
    {"black is never added from the top, so low is 0; 100 times 2.55 is a little less than 255", 1, 1, 0, 100,
     0, 254},
    {"low 9, high 20, so 1 and 11 times 255/11", 1, 1, 10, 20, 23, 255},
    {"both ends used", 1, 1, 0, 255, 0, 255},
    {"low 0 by the darkest value 1, high 255", 1, 1, 1, 255, 1, 255},
    {"bright share of exactly 0.01: high stays at 200; low 49, so 1 time 255/151", 99, 1, 50, 200, 1, 255},
    {"bright share below 0.01: high falls to 50", 199, 1, 50, 200, 255, 255},
    {"dark share of exactly 0.01: low is 9; 1 time 255/41", 1, 99, 10, 50, 6, 255},
    {"dark share below 0.01: low rises to 49 and 10 is below it", 1, 199, 10, 50, 0, 255},
    {"black in more than 0.99: low and high are 0 and nothing changes", 199, 1, 0, 40, 0, 40},
    {"white in more than 0.99: low is 254", 1, 199, 3, 255, 0, 255},
};

TEST(StretchContrast, CutsTheEndsByTheirShares)
{
    for (const StretchRow& row : stretchRows)
    {
        SCOPED_TRACE(row.what);
        Bytes values(row.firstCount, row.first);
        values.insert(values.end(), row.secondCount, row.second);
        FrameBytes picture{values};
        StretchContrast(picture, picture.size());
        Bytes expected(row.firstCount, row.firstShown);
        expected.insert(expected.end(), row.secondCount, row.secondShown);
        EXPECT_EQ(picture, expected);
    }
}

TEST(StretchContrast, TruncatesBetweenTheEnds)
{
    // Six values of equal share: low is 0 by the darkest value 0, high 60, the factor 4.25.
    FrameBytes picture{Bytes{0, 10, 20, 30, 50, 60}};
    StretchContrast(picture, 6);
    EXPECT_EQ(picture, (Bytes{0, 42, 85, 127, 212, 255}));
}

} // namespace
