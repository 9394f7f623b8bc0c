#include "formats/RawImageEmi.h"
#include "support/files/EmiFile.h"
#include "support/streams/DamagedFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::IsEmpty;

using EmiRead = FileRead<RawImageEmi>;

namespace {

const std::string noImages = "[Lumora] EMI: No images found";
const std::string outOfRange = "[Lumora] EMI: Frame index is out of range";

// Where the items of the file below end.
constexpr size_t stampAndVersionEnd = 4;
constexpr size_t versionTextEnd = 21;
constexpr size_t markerEnd = 33;
constexpr size_t firstImageFacts = 49;
constexpr size_t firstImageEnd = 59;
constexpr size_t secondImageFacts = 86;
constexpr size_t secondImageEnd = 95;

/// One item of most kinds, and two images.
Bytes Items()
{
    return EmiFile()
        .Blank()
        .VersionText("4.3")
        .Fixed(52, 8)
        .Bytes(5, 2, Bytes{0, 1, 2, 3, 4, 5, 6, 7, 8, 255})
        .Sized(0x2216, 1, Bytes(3, 0xEE))
        .Bytes(3, 3, Bytes{0, 1, 2, 3, 4, 5, 6, 7, 255})
        .Build();
}

void ExpectWalkedSoFar(const EmiRead& read, size_t length)
{
    EXPECT_EQ(read.reader.software, length < versionTextEnd ? L"Pellox" : L"Pellox 4.3") << length;
    EXPECT_EQ(read.reader.formatDetails, length < markerEnd ? L"" : L"Requires Pellox 4.15.0.2311 or later")
        << length;
    EXPECT_EQ(read.reader.frameCount,
              (length < firstImageFacts ? 0U : 1U) + (length < secondImageFacts ? 0U : 1U))
        << length;
}

TEST(DamagedEmiFile, IsReadAsFarAsItReaches)
{
    const Bytes whole = Items();
    ASSERT_EQ(whole.size(), secondImageEnd);
    struct Row
    {
        uint32_t frameIndex;
        size_t factsEnd;
        size_t imageEnd;
    };
    for (const Row& row : {Row{0, firstImageFacts, firstImageEnd}, Row{1, secondImageFacts, secondImageEnd}})
        for (size_t length = stampAndVersionEnd; length <= whole.size(); ++length)
        {
            const Bytes file = FirstBytes(whole, length);
            Lines lines;
            if (length < row.factsEnd)
                lines.push_back(length < firstImageFacts ? noImages : outOfRange);

            const EmiRead header{file, 0, row.frameIndex};
            EXPECT_EQ(header.succeeded, length >= row.factsEnd) << length;
            EXPECT_EQ(header.lines, lines) << length;
            ExpectWalkedSoFar(header, length);

            if (length >= row.factsEnd && length < row.imageEnd)
                lines.push_back(cannotReadImage);
            const EmiRead frame{file, 1, row.frameIndex};
            EXPECT_EQ(frame.succeeded, length >= row.imageEnd) << length;
            EXPECT_EQ(frame.lines, lines) << length;
            ExpectWalkedSoFar(frame, length);
            ExpectSaneOutcome(file, row.frameIndex, length);
        }
}

TEST(DamagedEmiFile, FailsSilentlyWithoutAStampAndAVersion)
{
    for (size_t length = 0; length < stampAndVersionEnd; ++length)
    {
        const EmiRead read{FirstBytes(Items(), length), 0};
        EXPECT_FALSE(read.succeeded) << length;
        EXPECT_THAT(read.lines, IsEmpty()) << length;
        EXPECT_EQ(read.reader.software, L"Pellox") << length;
    }
}

TEST(DamagedEmiFile, IsReadOrNotWithAnyByteChanged)
{
    ForEveryChangedByte(Items(), secondImageEnd, [](const Bytes& file, size_t place) {
        for (const uint32_t frameIndex : {0U, 1U})
            ExpectSaneRead<RawImageEmi>(file, frameIndex, place);
        ExpectSaneOutcome(file, 0, place);
    });
}

TEST(EmiReader, KeepsWhatStandsBeforeAWindowThatCannotBeRead)
{
    const Bytes distant =
        EmiFile().Bytes(9, 1, nine).Sized(0x2000, 1, Bytes(0x400000)).Bytes(9, 1, nine).Build();
    ASSERT_EQ(EmiRead(distant, 0).reader.frameCount, 2U);
    for (const StreamFaults& faults : {StreamFaults{.failSeekAt = 2}, StreamFaults{.failReadAt = 2}})
    {
        const EmiRead read{distant, 1, 0, faults};
        EXPECT_TRUE(read.succeeded);
        EXPECT_EQ(read.reader.frameCount, 1U);
        EXPECT_EQ(read.reader.displayPixels, nine);
        EXPECT_THAT(read.lines, IsEmpty());
    }
}

} // namespace
