#include "support/display/FrameReader.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

// Half, single and double precision numbers. The histogram cuts nothing from frames of so few samples:
// each is shown by its place between the smallest one and the largest one.

using namespace Tav::Imaging::RawImage;

namespace {

const std::string bigEndian = "[Lumora] Big endian byte ordering";
const std::string zeroRange = "[Lumora] The found dynamic range is zero";
const std::string tooWideRange = "[Lumora] The dynamic range is too high for calculating the exact histogram";

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// A row of single precision numbers.
StoredFrame Row(std::initializer_list<float> samples)
{
    return {.pixelType = PixelType::Float32,
            .width = static_cast<uint32_t>(samples.size()),
            .height = 1,
            .bytes = Stored(samples)};
}

/// A row of double precision numbers.
StoredFrame DoubleRow(std::initializer_list<double> samples)
{
    return {.pixelType = PixelType::Double64,
            .width = static_cast<uint32_t>(samples.size()),
            .height = 1,
            .bytes = Stored(samples)};
}

/// A row of half precision codes.
StoredFrame HalfRow(std::initializer_list<uint16_t> codes)
{
    return {.pixelType = PixelType::Float16,
            .width = static_cast<uint32_t>(codes.size()),
            .height = 1,
            .bytes = Stored(codes)};
}

StoredFrame FromRawFile(StoredFrame frame)
{
    frame.fileType = FileType::Raw;
    return frame;
}

TEST(Float32Display, QuantisesTheRangeTo16Bits)
{
    // 0, 16383.75, 32767.5 and 65535: without their fractions 63.7, 127.4 and 255 steps of 257.
    ExpectDisplay(Row({0.0F, 0.25F, 0.5F, 1.0F}), {0, 63, 127, 255});
    ExpectDisplay(Row({-1.0F, -0.5F, 0.0F, 1.0F}), {0, 63, 127, 255});
}

TEST(Float32Display, HonoursTheByteOrderAndFlips)
{
    ExpectDisplay({.pixelType = PixelType::Float32,
                   .width = 1,
                   .height = 3,
                   .bytes = Stored<float>({0.0F, 0.5F, 1.0F}, ByteOrder::BigEndian),
                   .byteOrder = ByteOrder::BigEndian,
                   .flipVertical = true},
                  {255, 127, 0}, {bigEndian});
}

TEST(Float32Display, IsBlackForAConstantFrame)
{
    for (const float value : {0.0F, -0.0F, 5.0F, -5.0F, 1e-45F, std::numeric_limits<float>::max()})
    {
        SCOPED_TRACE(value);
        ExpectDisplay(Row({value, value}), {0, 0}, {zeroRange});
    }
}

TEST(Float32Display, IgnoresNaN)
{
    ExpectDisplay(Row({notANumber, 1.0F, -notANumber, 3.0F}), {0, 0, 0, 255});
    ExpectDisplay(Row({notANumber, notANumber}), {0, 0}, {zeroRange});
    ExpectDisplay(FromRawFile(Row({notANumber, notANumber})), {0, 0}, {zeroRange});
}

TEST(Float32Display, IsBlackWithAnInfiniteRange)
{
    ExpectDisplay(Row({infinity, 1.0F, 3.0F}), {0, 0, 0}, {zeroRange});
    ExpectDisplay(Row({-infinity, 1.0F, 3.0F}), {0, 0, 0}, {zeroRange});
    ExpectDisplay(Row({-infinity, infinity}), {0, 0}, {zeroRange});
    ExpectDisplay(Row({infinity, infinity}), {0, 0}, {zeroRange});
    ExpectDisplay(Row({notANumber, -infinity}), {0, 0}, {zeroRange});
    ExpectDisplay(DoubleRow({-1e308, 1e308}), {0, 0}, {zeroRange});
}

TEST(Float32Display, ShowsSubnormalNumbers)
{
    ExpectDisplay(Row({0.0F, 1e-45F}), {0, 255});
    ExpectDisplay(Row({0.0F, 1e-45F, 3e-45F}), {0, 127, 255});
}

TEST(Float32Display, TakesTheSmallestNormalDoubleAsMaximumOfNegativeFrames)
{
    // Quantised to 32 bits, -3 and -1 are 0 and 2863311530 of 4294967295, and white is the end of the
    // coarse bin, 2863316991. With a maximum of -1 the second pixel would be white.
    ExpectDisplay(FromRawFile(Row({-3.0F, -1.0F})), {0, 254}, {tooWideRange});
}

TEST(FloatDisplay, QuantisesRangesFrom65536OnTo32Bits)
{
    // The whole part of the range decides.
    ExpectDisplay(Row({0.0F, 65535.0F}), {0, 255});
    ExpectDisplay(Row({0.0F, 65535.5F}), {0, 255});
    ExpectDisplay(Row({0.0F, 65536.0F}), {0, 255}, {tooWideRange});
    ExpectDisplay(Row({-32768.0F, 32768.0F}), {0, 255}, {tooWideRange});
    ExpectDisplay(DoubleRow({0.0, 65535.999}), {0, 255});
}

TEST(FloatDisplay, LooksAtTheLow32BitsOfTheRange)
{
    ExpectDisplay(DoubleRow({0.0, 4294967295.0}), {0, 255}, {tooWideRange});
    ExpectDisplay(DoubleRow({0.0, 4294967296.0}), {0, 255});
    ExpectDisplay(DoubleRow({0.0, 4294967296.0 + 65535.5}), {0, 255});
    ExpectDisplay(DoubleRow({0.0, 4294967296.0 + 65536.0}), {0, 255}, {tooWideRange});
    // 2^52 + 65536, the last power of two with room for so small a part, and numbers without low bits.
    ExpectDisplay(DoubleRow({0.0, 4503599627370496.0 + 65536.0}), {0, 255}, {tooWideRange});
    ExpectDisplay(DoubleRow({0.0, 1e300}), {0, 255});
    ExpectDisplay(Row({0.0F, 1e38F}), {0, 255});
}

TEST(FloatDisplay, QuantisesRealNumbersOfRawFilesTo32Bits)
{
    ExpectDisplay(FromRawFile(HalfRow({0x0000, 0x3C00})), {0, 255}, {tooWideRange});
    ExpectDisplay(FromRawFile(Row({0.0F, 1.0F})), {0, 255}, {tooWideRange});
    ExpectDisplay(FromRawFile(DoubleRow({0.0, 1.0})), {0, 255}, {tooWideRange});
}

TEST(Double64Display, IsLittleEndianInEveryFile)
{
    const StoredFrame frame = DoubleRow({0.0, 0.25, 0.5, 1.0});
    ExpectDisplay(frame, {0, 63, 127, 255});

    StoredFrame bigEndianFrame = frame;
    bigEndianFrame.byteOrder = ByteOrder::BigEndian;
    ExpectDisplay(bigEndianFrame, {0, 63, 127, 255}, {bigEndian});
}

TEST(Double64Display, FlipsRows)
{
    ExpectDisplay({.pixelType = PixelType::Double64,
                   .width = 1,
                   .height = 3,
                   .bytes = Stored<double>({0.0, 0.5, 1.0}),
                   .flipVertical = true},
                  {255, 127, 0});
}

TEST(Double64Display, ShowsRangesTooSmallToDivideBy)
{
    // The scale is infinite: the smallest sample gives NaN and so 0, every other one the highest value,
    // and the range that the histogram is given is empty.
    constexpr double smallest = std::numeric_limits<double>::denorm_min();
    ExpectDisplay(DoubleRow({0.0, smallest}), {0, 255}, {zeroRange});
    ExpectDisplay(FromRawFile(DoubleRow({smallest, 0.0, 2 * smallest})), {255, 0, 255}, {zeroRange});
}

TEST(Float16Display, ReadsNumbers)
{
    // 0, 0.25, 0.5, 1 and -1, 0, 1.
    ExpectDisplay(HalfRow({0x0000, 0x3400, 0x3800, 0x3C00}), {0, 63, 127, 255});
    ExpectDisplay(HalfRow({0xBC00, 0x8000, 0x3C00}), {0, 127, 255});
    // 1.5 and the largest number, 65504, beside 0.
    ExpectDisplay(HalfRow({0x0000, 0x3E00, 0x7BFF}), {0, 0, 255});
}

TEST(Float16Display, ScalesSubnormalNumbersBy2ToTheMinus15)
{
    // The largest subnormal number is 1023/2048 of the smallest normal one, 127.4 of 255 parts.
    ExpectDisplay(HalfRow({0x0000, 0x03FF, 0x0400}), {0, 127, 255});
    ExpectDisplay(HalfRow({0x83FF, 0x0000, 0x03FF}), {0, 127, 255});
}

TEST(Float16Display, HonoursTheByteOrderAndFlips)
{
    ExpectDisplay({.pixelType = PixelType::Float16,
                   .width = 1,
                   .height = 3,
                   .bytes = {0x00, 0x00, 0x38, 0x00, 0x3C, 0x00},
                   .byteOrder = ByteOrder::BigEndian,
                   .flipVertical = true},
                  {255, 127, 0}, {bigEndian});
}

TEST(Float16Display, IsBlackWithInfiniteNumbers)
{
    for (const uint16_t code : {uint16_t{0x7C00}, uint16_t{0xFC00}, uint16_t{0x7E01}, uint16_t{0xFE01}})
    {
        SCOPED_TRACE(code);
        ExpectDisplay(HalfRow({0x0000, code, 0x3C00}), {0, 0, 0}, {zeroRange});
    }
}

TEST(Complex64Display, ShowsMagnitudes)
{
    // 0, 5 and 10.
    const StoredFrame frame = {.pixelType = PixelType::Complex64,
                               .width = 1,
                               .height = 3,
                               .bytes = Stored<float>({0.0F, -0.0F, -3.0F, 4.0F, 6.0F, -8.0F})};
    ExpectDisplay(frame, {0, 127, 255});

    StoredFrame flipped = frame;
    flipped.flipVertical = true;
    flipped.byteOrder = ByteOrder::BigEndian;
    ExpectDisplay(flipped, {255, 127, 0}, {bigEndian});

    // Complex frames stay at 16 bits in every file.
    ExpectDisplay(FromRawFile(frame), {0, 127, 255});
}

TEST(Complex64Display, SquaresInDoublePrecision)
{
    // The squares are beyond single precision; the magnitudes are 0, 3e38 and 3e38 times the root of 2.
    ExpectDisplay({.pixelType = PixelType::Complex64,
                   .width = 3,
                   .height = 1,
                   .bytes = Stored<float>({0.0F, 0.0F, 3e38F, 0.0F, 3e38F, 3e38F})},
                  {0, 180, 255});
}

TEST(Complex64Display, IgnoresNaN)
{
    ExpectDisplay({.pixelType = PixelType::Complex64,
                   .width = 3,
                   .height = 1,
                   .bytes = Stored<float>({notANumber, 1.0F, 3.0F, 4.0F, 6.0F, 8.0F})},
                  {0, 0, 255});
}

TEST(Complex128Display, ShowsMagnitudes)
{
    const StoredFrame frame = {.pixelType = PixelType::Complex128,
                               .width = 1,
                               .height = 3,
                               .bytes = Stored<double>({0.0, -0.0, -3.0, 4.0, 6.0, -8.0})};
    ExpectDisplay(frame, {0, 127, 255});
    ExpectDisplay(FromRawFile(frame), {0, 127, 255});

    StoredFrame flipped = frame;
    flipped.flipVertical = true;
    flipped.byteOrder = ByteOrder::BigEndian;
    ExpectDisplay(flipped, {255, 127, 0}, {bigEndian});
}

TEST(Complex128Display, IsBlackWithMagnitudesBeyondDoublePrecision)
{
    ExpectDisplay({.pixelType = PixelType::Complex128,
                   .width = 2,
                   .height = 1,
                   .bytes = Stored<double>({0.0, 0.0, 1e200, 1e200})},
                  {0, 0}, {zeroRange});
}

} // namespace
