#include "formats/mrc/RawImageMrc.h"
#include "support/FileFacts.h"
#include "support/files/MrcFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using MrcRead = FileRead<RawImageMrc>;

namespace {

const std::string lessFrames = "[Lumora] MRC: The file contains less frames than specified in the header";
const std::string noCountInHeader = "[Lumora] MRC: The file contains frames while the header specifies zero";
const std::string noCompleteFrame = "[Lumora] MRC: No complete frame is present in the file";
const std::string outOfRange = "[Lumora] MRC: Frame index is out of range";
const std::string constantImage = "[Lumora] The found dynamic range is zero";

/// A frame of 3 x 1 samples of 16 bits whose picture is 0, `number`, 255.
Bytes NumberedFrame(uint8_t number)
{
    return {0, 0, number, 0, 255, 0};
}

/// The number that marks a frame; a prime, so that no power of two brings the same number again.
uint8_t FrameNumber(size_t frameIndex)
{
    return static_cast<uint8_t>(frameIndex % 251);
}

Bytes NumberedFrames(size_t count)
{
    Bytes frames;
    for (size_t i = 0; i < count; ++i)
    {
        const Bytes frame = NumberedFrame(FrameNumber(i));
        frames.insert(frames.end(), frame.begin(), frame.end());
    }
    return frames;
}

MrcFile NumberedFile(uint32_t sections, size_t storedFrames)
{
    return MrcFile().Size(3, 1, sections).Mode(6).Samples(NumberedFrames(storedFrames));
}

TEST(MrcReader, KeepsToTheHeadersCountWhenTheFileHoldsMore)
{
    const MrcRead read{NumberedFile(2, 4).Build(), 1, 1};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.frameCount, 2U);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 1, 255));
    EXPECT_THAT(read.lines, IsEmpty());
}

struct CountRow
{
    uint32_t sections;
    /// Complete frames in the file, and bytes of one more.
    uint32_t storedFrames;
    uint32_t moreBytes;
    uint32_t frameIndex;
    bool succeeds;
    uint32_t frameCount;
    Lines lines;
};

TEST(MrcReader, CorrectsTheHeadersCountByTheFilesSize)
{
    const CountRow rows[] = {
        // Less than the header says.
        {5, 3, 0, 0, true, 3, {lessFrames}},
        {5, 3, 0, 2, true, 3, {lessFrames}},
        {5, 3, 0, 3, false, 3, {lessFrames, outOfRange}},
        {5, 3, 0, 4, false, 3, {lessFrames, outOfRange}},
        {5, 4, 5, 3, true, 4, {lessFrames}},
        {5, 5, 0, 4, true, 5, {}},
        // The header does not know.
        {0, 4, 0, 3, true, 4, {noCountInHeader}},
        {0, 4, 5, 3, true, 4, {noCountInHeader}},
        {0, 4, 5, 4, false, 4, {noCountInHeader, outOfRange}},
        {0, 1, 0, 0, true, 1, {noCountInHeader}},
        {0, 0, 0, 0, false, 0, {outOfRange}},
        {0, 0, 5, 0, false, 0, {outOfRange}},
        // Nothing to show.
        {1, 0, 0, 0, false, 1, {noCompleteFrame}},
        {1, 0, 5, 0, false, 1, {noCompleteFrame}},
        {5, 0, 5, 7, false, 5, {noCompleteFrame}},
        {1024, 0, 5, 0, false, 1024, {noCompleteFrame}},
    };
    for (const CountRow& row : rows)
        for (const uint32_t mode : {0U, 1U})
        {
            Bytes file = NumberedFile(row.sections, row.storedFrames).Build();
            file.resize(file.size() + row.moreBytes);
            const MrcRead read{file, mode, row.frameIndex};

            EXPECT_EQ(read.succeeded, row.succeeds) << row.sections << " of " << row.storedFrames;
            EXPECT_EQ(read.lines, row.lines) << row.sections << " of " << row.storedFrames;
            if (row.lines != Lines{noCompleteFrame})
            {
                EXPECT_EQ(read.reader.frameCount, row.frameCount)
                    << row.sections << " of " << row.storedFrames;
            }
            if (row.succeeds && mode == 1)
            {
                EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, row.frameIndex, 255));
            }
        }
}

TEST(MrcReader, IgnoresAnExtendedHeaderThatLeavesNoRoomForAFrame)
{
    struct Row
    {
        uint32_t claimedBytes;
        uint32_t fileBytes;
        uint8_t shown;
    };
    constexpr Row rows[] = {
        {0, 1042, 10},          {6, 1042, 11},          {12, 1042, 20}, // exactly the room there is
        {12, 1041, 10},         {13, 1042, 10},         {1042, 1042, 10}, {0x7FFFFFFF, 1042, 10},
        {0xFFFFFFFF, 1042, 10}, {0xFFFFFC00, 1042, 10}, // with the main header 2^32 bytes
        {0xFFFFFBFA, 1042, 10},                         // the same with a frame
        {0xFFFFFC06, 1042, 10},                         // a 32-bit data start would be 6
    };
    for (const Row& row : rows)
    {
        Bytes extended = NumberedFrame(10);
        for (const uint8_t byte : NumberedFrame(11))
            extended.push_back(byte);
        Bytes file = MrcFile()
                         .Size(3, 1, 1)
                         .Mode(6)
                         .ExtendedHeader("", extended)
                         .ClaimExtendedBytes(row.claimedBytes)
                         .Samples(NumberedFrame(20))
                         .Build();
        file.resize(row.fileBytes);
        const MrcRead read{file};

        EXPECT_TRUE(read.succeeded) << row.claimedBytes;
        EXPECT_EQ(read.reader.frameCount, 1U) << row.claimedBytes;
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, row.shown, 255)) << row.claimedBytes;
        EXPECT_THAT(read.lines, IsEmpty()) << row.claimedBytes;
    }
}

TEST(MrcReader, ReadsTheSizeOfTheExtendedHeaderInTheFilesOrder)
{
    const auto file = MrcFile()
                          .Order(ByteOrder::BigEndian)
                          .Size(3, 1, 1)
                          .Mode(6)
                          .ExtendedHeader("", Bytes(256, 0x55))
                          .Numbers<uint16_t>({0, 77, 255});
    const MrcRead read{file.Build()};
    EXPECT_TRUE(read.succeeded);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 77, 255));
    EXPECT_THAT(read.lines, ElementsAre("[Lumora] Big endian byte ordering"));
}

struct StackRow
{
    uint32_t sections;
    uint32_t mainHeaderBytes;
    uint32_t extendedBytes;
    uint32_t storedFrames;
    uint32_t frameCount;
    Lines lines;
};

TEST(MrcReader, FindsTheFramesOfALongStackBehindEitherMainHeader)
{
    const StackRow rows[] = {
        {1024, 1024, 0, 1024, 1024, {}},           {1024, 1024, 512, 1024, 1024, {}},
        {1025, 1024, 0, 2000, 1025, {}},           {1025, 8192, 0, 1025, 1025, {}},
        {1025, 8192, 512, 1025, 1025, {}},         {2000, 1024, 0, 2000, 2000, {}},
        {2000, 1024, 512, 2000, 2000, {}},         {2000, 8192, 0, 2000, 2000, {}},
        {2000, 8192, 512, 2000, 2000, {}},         {2000, 8192, 512, 2001, 2000, {}},
        {2000, 1024, 0, 1500, 1500, {lessFrames}}, {2000, 1024, 512, 1999, 1999, {lessFrames}},
    };
    for (const StackRow& row : rows)
    {
        const Bytes file = NumberedFile(row.sections, row.storedFrames)
                               .MainHeaderBytes(row.mainHeaderBytes)
                               .ExtendedHeader("", Bytes(row.extendedBytes, 0x55))
                               .Build();
        for (const uint32_t frameIndex : {0U, 1U, 1000U, row.frameCount - 1})
        {
            const MrcRead read{file, 1, frameIndex};
            EXPECT_TRUE(read.succeeded) << row.sections << " behind " << row.mainHeaderBytes;
            EXPECT_EQ(read.reader.frameCount, row.frameCount)
                << row.sections << " behind " << row.mainHeaderBytes;
            EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, FrameNumber(frameIndex), 255))
                << row.sections << " behind " << row.mainHeaderBytes;
            EXPECT_EQ(read.lines, row.lines) << row.sections << " behind " << row.mainHeaderBytes;
        }
        const MrcRead beyond{file, 0, row.frameCount};
        EXPECT_FALSE(beyond.succeeded);
        Lines lines = row.lines;
        lines.push_back(outOfRange);
        EXPECT_EQ(beyond.lines, lines);
    }
}

TEST(MrcReader, TakesPaddingForFramesWhereTheCountLetsTheShortHeaderPass)
{
    // Up to 1024 sections the long header is never considered.
    const MrcRead few{NumberedFile(1024, 1024).MainHeaderBytes(8192).Build()};
    EXPECT_TRUE(few.succeeded);
    EXPECT_EQ(few.reader.frameCount, 1024U);
    EXPECT_THAT(few.reader.displayPixels, ElementsAre(0, 0, 0));
    EXPECT_THAT(few.lines, ElementsAre(constantImage));

    // 1500 of 2000 frames: too few behind the long header, enough bytes behind the short one.
    const MrcRead cut{NumberedFile(2000, 1500).MainHeaderBytes(8192).Build()};
    EXPECT_TRUE(cut.succeeded);
    EXPECT_EQ(cut.reader.frameCount, 2000U);
    EXPECT_THAT(cut.reader.displayPixels, ElementsAre(0, 0, 0));
    EXPECT_THAT(cut.lines, ElementsAre(constantImage));
}

TEST(MrcReader, DoesNotReconsiderAnExtendedHeaderThatTheLongHeaderLeftNoRoomFor)
{
    // 200 + 8192 + 6 bytes are more than the 8292 that there are, 200 + 1024 + 6 would not be.
    Bytes extended = NumberedFrame(10);
    extended.resize(200);
    Bytes file = NumberedFile(2000, 1178).ExtendedHeader("", extended).Build();
    ASSERT_EQ(file.size(), 8292U);
    const MrcRead read{file};

    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.frameCount, 1211U); // (8292 - 1024) / 6
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 10, 255));
    EXPECT_THAT(read.lines, ElementsAre(lessFrames));
}

TEST(MrcReader, FindsNoFrameBehindEitherMainHeader)
{
    // Frames of 10000 bytes; the stream reaches beyond the long header, so that nothing wraps.
    for (const size_t dataBytes : {size_t{9999}, size_t{10000}})
    {
        const MrcRead read{MrcFile().Size(100, 50, 2000).Mode(1).Samples(Bytes(dataBytes)).Build(), 0};
        EXPECT_EQ(read.succeeded, dataBytes == 10000);
        EXPECT_EQ(read.lines, Lines{dataBytes == 10000 ? lessFrames : noCompleteFrame});
    }
}

TEST(MrcReader, ReadsNothingBeyondTheEndWhenTheLongHeaderIsLongerThanTheFile)
{
    // 1025 frames of six bytes and the short header are less than 8192 bytes: the difference wraps and
    // seems to hold all frames.
    ExpectFactsWithoutFrame<RawImageMrc>(
        NumberedFile(1025, 1025).Build(), 0, cannotReadImage,
        HasFacts({FileType::Mrc, PixelType::UInt16, 3, 1, 1025, false, L"", L"MRC Mode 6"}));
}

} // namespace
