#include "support/display/FrameReader.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

// Frames with so many samples that the coarse histogram counts only some of them.

using namespace Tav::Imaging::RawImage;

namespace {

constexpr uint32_t value = 500000;

/// One sample in `period` has the value; one is far above it, where no larger step than 1 finds it; the
/// others are 0.
Bytes PeriodicFile(size_t sampleCount, size_t period)
{
    const Bytes valueBytes = Stored<uint32_t>({value});
    Bytes file(4 * sampleCount);
    for (size_t i = 0; i < sampleCount; i += period)
        std::memcpy(file.data() + 4 * i, valueBytes.data(), 4);
    std::memcpy(file.data() + 4, Stored<uint32_t>({10000000}).data(), 4);
    return file;
}

/// Expects that all samples of the value are shown as `shade`.
void ExpectPeriodicDisplay(uint32_t width, uint32_t height, size_t period, uint8_t shade, const Lines& lines)
{
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    const size_t sampleCount = size_t{width} * height;
    FrameReader reader{StoredFrame{.pixelType = PixelType::UInt32, .width = width, .height = height}};
    TestStream stream{PeriodicFile(sampleCount, period)};
    Bytes expected(sampleCount);
    for (size_t i = 0; i < sampleCount; i += period)
        expected[i] = shade;
    expected[1] = 255;

    DiagnosticLines diagnostics;
    EXPECT_TRUE(reader.Read(&stream, stream.bytes.size(), readModeFrame, 0));
    EXPECT_EQ(diagnostics.Take(), lines);
    EXPECT_TRUE(reader.displayPixels == expected) << "first pixel: " << +reader.displayPixels[0];
}

// When only the samples of the value are counted, bin 30 holds all: the range is 491520 to 507903, and
// the exact histogram finds too few of the samples in it to narrow it further. The value is 8480 of 16383
// parts up. When the zeros are counted too, the range is 0 to 507903.
constexpr uint8_t shadeInOneBin = 131;
constexpr uint8_t shadeFromZero = 251;
const Lines tooWideRange = {"[Lumora] The dynamic range is too high for calculating the exact histogram"};

TEST(LargeFrameDisplay, CountsEverySampleBelow4194304)
{
    ExpectPeriodicDisplay(2047, 2049, 4, shadeFromZero, tooWideRange);
}

TEST(LargeFrameDisplay, CountsEveryFourthSampleFrom4194304On)
{
    ExpectPeriodicDisplay(2048, 2048, 4, shadeInOneBin, {});
}

TEST(LargeFrameDisplay, CountsEveryFourthSampleBelow16777216)
{
    ExpectPeriodicDisplay(4095, 4097, 16, shadeFromZero, tooWideRange);
}

TEST(LargeFrameDisplay, CountsEverySixteenthSampleFrom16777216On)
{
    ExpectPeriodicDisplay(4096, 4096, 16, shadeInOneBin, {});
}

} // namespace
