#include "support/display/FrameReader.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

// Samples of at most one byte for each channel: their pictures are copies, stretched where they are gray.

using namespace Tav::Imaging::RawImage;

namespace {

const Lines shownAsUnsigned = {
    "[Lumora] MRC: The pixel format is UInt8 while the MRC header specifies Int8 (type 0)"};

TEST(UInt4Display, UnpacksTheLowHalfFirstAndMultipliesBy17)
{
    ExpectDisplay({.pixelType = PixelType::UInt4,
                   .width = 16,
                   .height = 1,
                   .bytes = {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE}},
                  {0, 17, 34, 51, 68, 85, 102, 119, 136, 153, 170, 187, 204, 221, 238, 255});
}

TEST(UInt4Display, StretchesTheContrast)
{
    // 51 and 170: low is 50, high 170, the factor 2.125.
    ExpectDisplay({.pixelType = PixelType::UInt4, .width = 2, .height = 1, .bytes = {0xA3}}, {2, 255});
}

TEST(UInt4Display, ReadsRowsOfOddWidthWithoutPadding)
{
    // Nine pixels in four bytes: the last one has no byte and stays black.
    ExpectDisplay({.pixelType = PixelType::UInt4, .width = 3, .height = 3, .bytes = {0xF0, 0x0F, 0xF0, 0xFF}},
                  {0, 255, 255, 0, 0, 255, 255, 255, 0});
}

TEST(UInt4Display, LeavesTheLastPixelOfAnOddCountBlack)
{
    ExpectDisplay({.pixelType = PixelType::UInt4, .width = 3, .height = 1, .bytes = {0xF0, 0xFF}},
                  {0, 255, 0});
    ExpectDisplay({.pixelType = PixelType::UInt4, .width = 1, .height = 3, .bytes = {0xF0}}, {0, 255, 0});
}

TEST(UInt4Display, ReadsNoByteForASinglePixel)
{
    ExpectDisplay({.pixelType = PixelType::UInt4, .width = 1, .height = 1}, {0});
}

TEST(UInt4Display, FlipsRowsOfEvenWidth)
{
    ExpectDisplay({.pixelType = PixelType::UInt4,
                   .width = 8,
                   .height = 2,
                   .bytes = {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE},
                   .flipVertical = true},
                  {136, 153, 170, 187, 204, 221, 238, 255, 0, 17, 34, 51, 68, 85, 102, 119});
}

TEST(UInt4Display, FlipsRowsOfOddWidthAsHalfAsManyWholeBytes)
{
    // Each row is one byte, the third byte belongs to none, and the last pixel of each row stays black.
    ExpectDisplay({.pixelType = PixelType::UInt4,
                   .width = 3,
                   .height = 2,
                   .bytes = {0xF0, 0x0F, 0x77},
                   .flipVertical = true},
                  {255, 0, 0, 0, 255, 0});
    ExpectDisplay(
        {.pixelType = PixelType::UInt4, .width = 1, .height = 4, .bytes = {0xFF, 0xFF}, .flipVertical = true},
        {0, 0, 0, 0});
}

TEST(UInt8Display, TurnsAConstantPictureWhiteUnlessItIsBlack)
{
    for (const uint8_t value : Bytes{1, 7, 128, 254, 255})
    {
        SCOPED_TRACE(static_cast<int>(value));
        ExpectDisplay({.width = 3, .height = 2, .bytes = Bytes(6, value)}, Bytes(6, 255));
    }
    ExpectDisplay({.width = 3, .height = 2, .bytes = Bytes(6)}, Bytes(6, 0));
}

TEST(UInt8Display, StretchesTheContrast)
{
    // low is 9, one below the darkest value, and high is 20: 1 and 11 times 255/11.
    ExpectDisplay({.width = 1, .height = 2, .bytes = {10, 20}}, {23, 255});
}

TEST(UInt8Display, KeepsThePictureThatReachesBothEnds)
{
    const Bytes samples = {0, 64, 128, 192, 250, 255};
    ExpectDisplay({.width = 3, .height = 2, .bytes = samples}, samples);
}

TEST(UInt8Display, FlipsRows)
{
    ExpectDisplay({.width = 3, .height = 2, .bytes = {0, 64, 128, 192, 250, 255}, .flipVertical = true},
                  {192, 250, 255, 0, 64, 128});
}

TEST(UInt8Display, ShowsOnlyTheFrameOfALongerStream)
{
    ExpectDisplay({.width = 2, .height = 1, .bytes = {0, 255, 100, 100, 100, 100}}, {0, 255});
    ExpectDisplay({.width = 2, .height = 1, .bytes = {0, 255, 100, 100, 100, 100}, .xStride = 1}, {0, 255});
}

TEST(Rgb24Display, CopiesChannelsWithoutStretch)
{
    ExpectDisplay({.pixelType = PixelType::RGB24, .width = 2, .height = 1, .bytes = {7, 8, 9, 7, 8, 9}},
                  {7, 8, 9, 7, 8, 9});
}

TEST(Rgb24Display, FlipsAsManyBytesAsThereArePixels)
{
    ExpectDisplay({.pixelType = PixelType::RGB24,
                   .width = 2,
                   .height = 2,
                   .bytes = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12},
                   .flipVertical = true},
                  {3, 4, 1, 2, 0, 0, 0, 0, 0, 0, 0, 0});
    ExpectDisplay(
        {.pixelType = PixelType::RGB24, .width = 1, .height = 1, .bytes = {1, 2, 3}, .flipVertical = true},
        {1, 0, 0});
}

TEST(Rgba32Display, DropsTheFourthChannel)
{
    ExpectDisplay(
        {.pixelType = PixelType::RGBA32, .width = 2, .height = 1, .bytes = {1, 2, 3, 4, 5, 6, 7, 8}},
        {1, 2, 3, 5, 6, 7});
}

TEST(Rgba32Display, IsNeverFlippedOrStretched)
{
    ExpectDisplay({.pixelType = PixelType::RGBA32,
                   .width = 1,
                   .height = 3,
                   .bytes = {1, 1, 1, 0, 2, 2, 2, 0, 3, 3, 3, 0},
                   .flipVertical = true},
                  {1, 1, 1, 2, 2, 2, 3, 3, 3});
}

TEST(Int8Display, ShiftsBy128)
{
    ExpectDisplay({.pixelType = PixelType::Int8, .width = 4, .height = 1, .bytes = {0x80, 0xFF, 0x00, 0x7F}},
                  {0, 127, 128, 255});
}

TEST(Int8Display, StretchesTheContrast)
{
    // Shifted, the values are 138 and 148.
    ExpectDisplay({.pixelType = PixelType::Int8, .width = 2, .height = 1, .bytes = {10, 20}}, {23, 255});
}

TEST(Int8Display, FlipsRows)
{
    ExpectDisplay({.pixelType = PixelType::Int8,
                   .width = 2,
                   .height = 2,
                   .bytes = {0x80, 0xFF, 0x00, 0x7F},
                   .flipVertical = true},
                  {128, 255, 0, 127});
}

/// Two zeros of eight, and no steps: with one zero more the samples count as unsigned.
StoredFrame QuarterOfZeros()
{
    return {.pixelType = PixelType::Int8,
            .width = 4,
            .height = 2,
            .bytes = {0, 0, 10, 20, 30, 40, 50, 60},
            .fileType = FileType::Mrc};
}

TEST(Int8Display, KeepsSignedSamplesWithAQuarterOfZeros)
{
    // 128, 128, 138, … 188: low is 127, high 188.
    ExpectDisplay(QuarterOfZeros(), {4, 4, 45, 87, 129, 171, 213, 255});
}

TEST(Int8Display, TakesSamplesOfOldMrcFilesAsUnsignedWhenMoreThanAQuarterAreZero)
{
    StoredFrame frame = QuarterOfZeros();
    frame.bytes[2] = 0;
    ExpectDisplay(frame, {0, 0, 0, 85, 127, 170, 212, 255}, shownAsUnsigned);

    frame.flipVertical = true;
    ExpectDisplay(frame, {127, 170, 212, 255, 0, 0, 0, 85}, shownAsUnsigned);
}

TEST(Int8Display, CountsSamplesThatAreZeroBeforeTheShift)
{
    // -128 is 0 only after the shift.
    StoredFrame frame = QuarterOfZeros();
    frame.bytes = Bytes(8, 0x80);
    ExpectDisplay(frame, Bytes(8, 0));
}

TEST(Int8Display, TakesSamplesOfOldMrcFilesAsUnsignedWhenNeighboursDifferByMoreThan127)
{
    // Shifted, -127 and 1 are 1 and 129; -126 and 1 are 2 and 129.
    const StoredFrame jump = {.pixelType = PixelType::Int8,
                              .width = 2,
                              .height = 1,
                              .bytes = {0x81, 0x01},
                              .fileType = FileType::Mrc};
    ExpectDisplay(jump, {255, 1}, shownAsUnsigned);

    StoredFrame fallingJump = jump;
    fallingJump.bytes = {0x01, 0x81};
    ExpectDisplay(fallingJump, {1, 255}, shownAsUnsigned);

    StoredFrame smallerJump = jump;
    smallerJump.bytes = {0x82, 0x01};
    ExpectDisplay(smallerJump, {1, 255});
}

TEST(Int8Display, ComparesNeighboursOfOneRowOnly)
{
    // Each row is constant; from row to row the values jump by 254.
    const StoredFrame frame = {.pixelType = PixelType::Int8,
                               .width = 2,
                               .height = 3,
                               .bytes = {0x81, 0x81, 0x7F, 0x7F, 0x81, 0x81},
                               .fileType = FileType::Mrc};
    // 1, 1, 255, 255, 1, 1: low is 0 and high 255, so nothing is stretched.
    ExpectDisplay(frame, {1, 1, 255, 255, 1, 1});
}

TEST(Int8Display, BelievesAllOtherFilesThatTheirSamplesAreSigned)
{
    for (const FileType type :
         {FileType::None, FileType::Mrc2014, FileType::Raw, FileType::Dm3, FileType::Ser, FileType::Hdf})
    {
        SCOPED_TRACE(static_cast<uint32_t>(type));
        // Half of them zero, and a jump from one end to the other.
        ExpectDisplay({.pixelType = PixelType::Int8,
                       .width = 4,
                       .height = 1,
                       .bytes = {0x80, 0x7F, 0x00, 0x00},
                       .fileType = type},
                      {0, 255, 128, 128});
    }
}

TEST(Int8Display, NotesTheByteOrderBeforeTheSign)
{
    ExpectDisplay({.pixelType = PixelType::Int8,
                   .width = 2,
                   .height = 1,
                   .bytes = {0, 0},
                   .byteOrder = ByteOrder::BigEndian,
                   .fileType = FileType::Mrc},
                  {0, 0}, {"[Lumora] Big endian byte ordering", shownAsUnsigned[0]});
}

} // namespace
