#include "support/display/FrameReader.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

// Integer samples of two and four bytes.

using namespace Tav::Imaging::RawImage;

namespace {

const std::string bigEndian = "[Lumora] Big endian byte ordering";
const std::string zeroRange = "[Lumora] The found dynamic range is zero";
const std::string wideRange = "[Lumora] The found dynamic range is larger than 64k";
const std::string tooWideRange = "[Lumora] The dynamic range is too high for calculating the exact histogram";

TEST(UInt16Display, IsBlackForAConstantFrame)
{
    for (const uint16_t value : {uint16_t{0}, uint16_t{1000}, uint16_t{65535}})
    {
        SCOPED_TRACE(value);
        ExpectDisplay({.pixelType = PixelType::UInt16,
                       .width = 3,
                       .height = 1,
                       .bytes = Stored<uint16_t>({value, value, value})},
                      {0, 0, 0}, {zeroRange});
    }
}

TEST(UInt16Display, MapsTheWholeRangeInStepsOf257)
{
    // The histogram cuts nothing: black is 0, white is 65535.
    ExpectDisplay({.pixelType = PixelType::UInt16,
                   .width = 6,
                   .height = 1,
                   .bytes = Stored<uint16_t>({0, 256, 257, 513, 514, 65535})},
                  {0, 0, 1, 1, 2, 255});
}

TEST(UInt16Display, HonoursTheByteOrder)
{
    ExpectDisplay(
        {.pixelType = PixelType::UInt16, .width = 2, .height = 2, .bytes = {0, 0, 0, 1, 1, 0, 1, 1}},
        // 0, 256, 1 and 257: the step is 257/255.
        {0, 254, 0, 255});
    ExpectDisplay({.pixelType = PixelType::UInt16,
                   .width = 2,
                   .height = 2,
                   .bytes = {0, 0, 0, 1, 1, 0, 1, 1},
                   .byteOrder = ByteOrder::BigEndian},
                  {0, 0, 254, 255}, {bigEndian});
}

TEST(UInt16Display, FlipsRows)
{
    ExpectDisplay({.pixelType = PixelType::UInt16,
                   .width = 2,
                   .height = 3,
                   .bytes = Stored<uint16_t>({0, 257, 514, 771, 1028, 65535}),
                   .flipVertical = true},
                  {4, 255, 2, 3, 0, 1});
}

TEST(UInt16Display, PutsBlackOneValueBelowTheDarkestThatIsKept)
{
    // One sample of 2000 at either end. From the top, 0.9995 is passed at 1000, so black is 999; from the
    // bottom it is passed at 1100, so white is 1100. The step is 101/255.
    Bytes samples = Stored<uint16_t>({0});
    Bytes expected = {0};
    for (int i = 0; i < 999; ++i)
    {
        for (const uint8_t byte : Stored<uint16_t>({1000, 1100}))
            samples.push_back(byte);
        expected.push_back(2);
        expected.push_back(255);
    }
    for (const uint8_t byte : Stored<uint16_t>({50000}))
        samples.push_back(byte);
    expected.push_back(255);
    ExpectDisplay({.pixelType = PixelType::UInt16, .width = 2000, .height = 1, .bytes = samples}, expected);
}

TEST(Int16Display, MeasuresFromTheSmallestSample)
{
    ExpectDisplay({.pixelType = PixelType::Int16,
                   .width = 4,
                   .height = 1,
                   .bytes = Stored<int16_t>({-32768, -32512, -32511, 32767})},
                  {0, 0, 1, 255});
    ExpectDisplay(
        {.pixelType = PixelType::Int16, .width = 3, .height = 1, .bytes = Stored<int16_t>({-3, -2, -1})},
        {0, 127, 255});
}

TEST(Int16Display, IsBlackForAConstantFrame)
{
    for (const int value : {-32768, -1, 0, 32767})
    {
        SCOPED_TRACE(value);
        const auto sample = static_cast<int16_t>(value);
        ExpectDisplay({.pixelType = PixelType::Int16,
                       .width = 1,
                       .height = 2,
                       .bytes = Stored<int16_t>({sample, sample})},
                      {0, 0}, {zeroRange});
    }
}

TEST(Int16Display, HonoursTheByteOrderAndFlips)
{
    ExpectDisplay({.pixelType = PixelType::Int16,
                   .width = 1,
                   .height = 4,
                   .bytes = Stored<int16_t>({-32768, -32512, -32511, 32767}, ByteOrder::BigEndian),
                   .byteOrder = ByteOrder::BigEndian,
                   .flipVertical = true},
                  {255, 1, 0, 0}, {bigEndian});
}

TEST(UInt32Display, IsLittleEndianInEveryFile)
{
    const Bytes samples = Stored<uint32_t>({0, 256, 257, 513, 514, 65535});
    const Bytes expected = {0, 0, 1, 1, 2, 255};
    ExpectDisplay({.pixelType = PixelType::UInt32, .width = 6, .height = 1, .bytes = samples}, expected);
    ExpectDisplay({.pixelType = PixelType::UInt32,
                   .width = 6,
                   .height = 1,
                   .bytes = samples,
                   .byteOrder = ByteOrder::BigEndian},
                  expected, {bigEndian});
}

TEST(UInt32Display, IsBlackForAConstantFrame)
{
    for (const uint32_t value : {0U, 1000000U, UINT32_MAX})
    {
        SCOPED_TRACE(value);
        ExpectDisplay({.pixelType = PixelType::UInt32,
                       .width = 1,
                       .height = 2,
                       .bytes = Stored<uint32_t>({value, value})},
                      {0, 0}, {zeroRange});
    }
}

TEST(UInt32Display, KeepsARangeOf65535AndGivesUpNarrowingAWiderOne)
{
    ExpectDisplay(
        {.pixelType = PixelType::UInt32, .width = 2, .height = 1, .bytes = Stored<uint32_t>({70000, 135535})},
        {0, 255});
    ExpectDisplay(
        {.pixelType = PixelType::UInt32, .width = 2, .height = 1, .bytes = Stored<uint32_t>({70000, 135536})},
        {0, 255}, {wideRange});
}

TEST(UInt32Display, TakesTheExactHistogramUpToARangeOf262143)
{
    ExpectDisplay({.pixelType = PixelType::UInt32,
                   .width = 2,
                   .height = 1,
                   .bytes = Stored<uint32_t>({10, 10 + 262143})},
                  {0, 255}, {wideRange});
    // The coarse histogram ends with its last bin, at 10 + 278527: 262144 is 240 of 255 parts of that.
    ExpectDisplay({.pixelType = PixelType::UInt32,
                   .width = 2,
                   .height = 1,
                   .bytes = Stored<uint32_t>({10, 10 + 262144})},
                  {0, 240}, {tooWideRange});
}

TEST(UInt32Display, SpansTheWholeType)
{
    // The range is 2^32 - 1, the step 16843009.
    ExpectDisplay({.pixelType = PixelType::UInt32,
                   .width = 5,
                   .height = 1,
                   .bytes = Stored<uint32_t>({0, 16843008, 16843009, 0x80000000, UINT32_MAX})},
                  {0, 0, 1, 127, 255}, {tooWideRange});
}

TEST(UInt32Display, LetsTheUpperEndOfTheLastCoarseBinWrap)
{
    // 99 of 100 samples are in the last bin, which begins at 5 + 262143 * 16384 = 4294950917 and ends
    // 16383 higher, beyond 2^32. The samples there are 16378 of 16383 parts up, the one of 5 is below.
    Bytes samples = Stored<uint32_t>({5});
    for (int i = 0; i < 99; ++i)
        samples.insert(samples.end(), 4, 0xFF);
    Bytes expected(100, 254);
    expected[0] = 0;
    ExpectDisplay({.pixelType = PixelType::UInt32, .width = 10, .height = 10, .bytes = samples}, expected);
}

TEST(Int32Display, SpansTheWholeType)
{
    constexpr int32_t smallest = std::numeric_limits<int32_t>::min();
    constexpr int32_t largest = std::numeric_limits<int32_t>::max();
    ExpectDisplay({.pixelType = PixelType::Int32,
                   .width = 4,
                   .height = 1,
                   .bytes = Stored<int32_t>({smallest, -1, 0, largest})},
                  {0, 127, 127, 255}, {tooWideRange});
    ExpectDisplay({.pixelType = PixelType::Int32,
                   .width = 2,
                   .height = 1,
                   .bytes = Stored<int32_t>({smallest, smallest})},
                  {0, 0}, {zeroRange});
    ExpectDisplay({.pixelType = PixelType::Int32,
                   .width = 2,
                   .height = 1,
                   .bytes = Stored<int32_t>({largest, largest})},
                  {0, 0}, {zeroRange});
}

TEST(Int32Display, IsLittleEndianInEveryFileAndMeasuresFromTheSmallestSample)
{
    const Bytes samples = Stored<int32_t>({-70000, -70000 + 256, -70000 + 257, -70000 + 65535});
    ExpectDisplay({.pixelType = PixelType::Int32, .width = 4, .height = 1, .bytes = samples}, {0, 0, 1, 255});
    ExpectDisplay({.pixelType = PixelType::Int32,
                   .width = 2,
                   .height = 2,
                   .bytes = samples,
                   .byteOrder = ByteOrder::BigEndian,
                   .flipVertical = true},
                  {1, 255, 0, 0}, {bigEndian});
}

} // namespace
