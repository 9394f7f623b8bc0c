#include "formats/mrc/RawImageMrc.h"
#include "support/files/MrcFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using MrcRead = FileRead<RawImageMrc>;

namespace {

const std::string bigEndian = "[Lumora] Big endian byte ordering";
const std::string unsignedBytes =
    "[Lumora] MRC: The pixel format is UInt8 while the MRC header specifies Int8 (type 0)";
const std::string mode101 = "[Lumora] MRC: Non-standard mode 101 detected (4-bit pixel format)";

struct PictureRow
{
    const char* what;
    uint32_t mode;
    /// Samples of a frame of 2 x 2 pixels, in the byte order of the file.
    Bytes samples;
    Bytes picture;
    Lines lines;
};

// Numbers are chosen to span exactly 255 steps, so that the picture is the distance from the smallest one,
// or, for fractions, to span 0 to 1: quantised to 65535 steps and then divided by 257.

TEST(MrcReader, ShowsTheFirstStoredRowOfALittleEndianFileAtTheTop)
{
    const PictureRow rows[] = {
        {"-128, -32, 32, 127", 0, {0x80, 0xE0, 0x20, 0x7F}, {0, 96, 160, 255}, {}},
        {"-100, -99, 55, 155", 1, {0x9C, 0xFF, 0x9D, 0xFF, 55, 0, 155, 0}, {0, 1, 155, 255}, {}},
        {"0, 1, 0.5, 0.25",
         2,
         {0, 0, 0, 0, 0, 0, 0x80, 0x3F, 0, 0, 0, 0x3F, 0, 0, 0x80, 0x3E},
         {0, 255, 127, 63},
         {}},
        {"65000, 65255, 65001, 65128",
         6,
         {0xE8, 0xFD, 0xE7, 0xFE, 0xE9, 0xFD, 0x68, 0xFE},
         {0, 255, 1, 128},
         {}},
        {"0, 1, 0.5, 0.25", 12, {0, 0, 0, 0x3C, 0, 0x38, 0, 0x34}, {0, 255, 127, 63}, {}},
        {"four colours",
         16,
         {1, 2, 3, 40, 50, 60, 7, 8, 9, 253, 254, 255},
         {1, 2, 3, 40, 50, 60, 7, 8, 9, 253, 254, 255},
         {}},
        {"0, 1, 2, 15", 101, {0x10, 0xF2}, {0, 17, 34, 255}, {mode101}},
    };
    for (const PictureRow& row : rows)
    {
        const MrcRead read{MrcFile().Size(2, 2, 1).Mode(row.mode).Samples(row.samples).Build()};
        EXPECT_TRUE(read.succeeded) << row.what;
        EXPECT_EQ(read.reader.displayPixels, row.picture) << row.mode << ": " << row.what;
        EXPECT_EQ(read.lines, row.lines) << row.mode << ": " << row.what;
    }
}

TEST(MrcReader, ShowsTheLastStoredRowOfAByteSwappedFileAtTheTop)
{
    const PictureRow rows[] = {
        {"-128, -32, 32, 127", 0, {0x80, 0xE0, 0x20, 0x7F}, {160, 255, 0, 96}, {bigEndian}},
        {"-100, -99, 55, 155", 1, {0xFF, 0x9C, 0xFF, 0x9D, 0, 55, 0, 155}, {155, 255, 0, 1}, {bigEndian}},
        {"0, 1, 0.5, 0.25",
         2,
         {0, 0, 0, 0, 0x3F, 0x80, 0, 0, 0x3F, 0, 0, 0, 0x3E, 0x80, 0, 0},
         {127, 63, 0, 255},
         {bigEndian}},
        {"65000, 65255, 65001, 65128",
         6,
         {0xFD, 0xE8, 0xFE, 0xE7, 0xFD, 0xE9, 0xFE, 0x68},
         {1, 128, 0, 255},
         {bigEndian}},
        {"0, 1, 0.5, 0.25", 12, {0, 0, 0x3C, 0, 0x38, 0, 0x34, 0}, {127, 63, 0, 255}, {bigEndian}},
        // Only the first third of a flipped colour picture is written, in rows of two bytes.
        {"four colours",
         16,
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12},
         {3, 4, 1, 2, 0, 0, 0, 0, 0, 0, 0, 0},
         {bigEndian}},
        {"0, 1, 2, 15", 101, {0x10, 0xF2}, {34, 255, 0, 17}, {mode101, bigEndian}},
    };
    for (const PictureRow& row : rows)
    {
        const MrcRead read{
            MrcFile().Order(ByteOrder::BigEndian).Size(2, 2, 1).Mode(row.mode).Samples(row.samples).Build()};
        EXPECT_TRUE(read.succeeded) << row.what;
        EXPECT_EQ(read.reader.displayPixels, row.picture) << row.mode << ": " << row.what;
        EXPECT_EQ(read.lines, row.lines) << row.mode << ": " << row.what;
    }
}

TEST(MrcReader, TellsUnsignedBytesFromSignedOnesInOlderFiles)
{
    const PictureRow rows[] = {
        // Two of four are needed: a quarter is not yet too many.
        {"half of the samples are zero", 0, {0, 0, 1, 255}, {0, 0, 1, 255}, {unsignedBytes}},
        // 0, 112, 128, 255 as signed bytes with 128 added; neighbours differ by 127 at the most.
        {"a quarter is zero", 0, {0x80, 0xF0, 0x00, 0x7F}, {0, 112, 128, 255}, {}},
        {"neighbours differ by 128", 0, {0x80, 0x00, 0x7F, 0x7F}, {255, 0, 253, 253}, {unsignedBytes}},
        {"rows differ by 255", 0, {0xE4, 0x80, 0x7F, 0x48}, {100, 0, 255, 200}, {}},
    };
    for (const PictureRow& row : rows)
    {
        const MrcRead read{MrcFile().Size(2, 2, 1).Mode(0).Samples(row.samples).Build()};
        EXPECT_TRUE(read.succeeded) << row.what;
        EXPECT_EQ(read.reader.pixelType, PixelType::Int8) << row.what;
        EXPECT_EQ(read.reader.displayPixels, row.picture) << row.what;
        EXPECT_EQ(read.lines, row.lines) << row.what;
    }
}

TEST(MrcReader, TakesBytesOfTheRevisionOf2014AsSigned)
{
    const MrcRead read{MrcFile().Size(4, 1, 1).Mode(0).Version(20140).Samples({0, 0, 1, 255}).Build()};

    EXPECT_TRUE(read.succeeded);
    // 128, 128, 129, 127 before the stretch from 126...129 to 0...255.
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(170, 170, 255, 85));
    EXPECT_THAT(read.lines, IsEmpty());
}

TEST(MrcReader, ShowsPacked4BitSamplesLowNibbleFirstAndFlipped)
{
    const auto file =
        MrcFile().Size(2, 2, 1).Mode(0).Labels("SerialEM: 4 bits packed").Samples({0x10, 0x32, 0xFE, 0xDC});
    const MrcRead read{file.Build()};

    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.width, 4U);
    EXPECT_EQ(read.reader.height, 2U);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(238, 255, 204, 221, 0, 17, 34, 51));
    EXPECT_THAT(
        read.lines,
        ElementsAre("[Lumora] MRC: Non-standard 4-bit pixel format detected while mode 0 is specified"));
}

TEST(MrcReader, TakesFramesOfPacked4BitSamplesByTheirStoredWidth)
{
    const Bytes samples = {0x11, 0x11, 0xF0, 0x11, 0x11, 0x21};
    for (const ByteOrder order : {ByteOrder::LittleEndian, ByteOrder::BigEndian})
    {
        const auto file =
            MrcFile().Order(order).Size(1, 2, 3).Mode(0).Labels("SerialEM: 4 bits packed").Samples(samples);
        const MrcRead read{file.Build(), 1, 1};
        EXPECT_TRUE(read.succeeded);
        EXPECT_EQ(read.reader.frameCount, 3U);
        EXPECT_EQ(read.reader.software, L"SerialEM");
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(17, 17, 0, 255));
    }
}

TEST(MrcReader, RefusesToShowPacked4BitSamplesWiderThanAPictureCanBe)
{
    const std::string packed =
        "[Lumora] MRC: Non-standard 4-bit pixel format detected while mode 0 is specified";
    const Bytes file =
        MrcFile().Size(32768, 1, 1).Mode(0).Labels("SerialEM: 4 bits packed").Samples(Bytes(32768)).Build();

    const MrcRead header{file, 0};
    EXPECT_TRUE(header.succeeded);
    EXPECT_EQ(header.reader.width, 65536U);
    EXPECT_THAT(header.lines, ElementsAre(packed));

    const MrcRead frame{file, 1};
    EXPECT_FALSE(frame.succeeded);
    EXPECT_THAT(frame.lines, ElementsAre(packed, invalidResolution));
}

} // namespace
