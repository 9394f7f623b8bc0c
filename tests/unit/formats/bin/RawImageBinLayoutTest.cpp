#include "formats/bin/RawImageBin.h"
#include "support/FileFacts.h"
#include "support/display/ReferenceDisplay.h"
#include "support/files/BinFile.h"
#include "support/streams/ReaderExpectations.h"
#include "support/streams/SparseRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using BinRead = FileRead<RawImageBin>;

namespace {

const std::string wrongFileSize =
    "[Lumora] BIN: File size does not match with the image properties in the header";

TEST(BinReader, FindsTheSamplesBehindEitherHeader)
{
    const BinRead shortHeader{BinFile().Size(5, 1).Samples(1, {0, 9, 100, 200, 255}).Build()};
    EXPECT_TRUE(shortHeader.succeeded);
    EXPECT_EQ(shortHeader.reader.fileType, FileType::Bin);
    EXPECT_THAT(shortHeader.reader.displayPixels, ElementsAre(0, 9, 100, 200, 255));

    for (const uint32_t length : {14U, 15U, 16U, 512U, 100000U})
    {
        const BinRead told{
            BinFile().Size(5, 1).HeaderLength(length).Samples(1, {0, 9, 100, 200, 255}).Build()};
        EXPECT_TRUE(told.succeeded) << length;
        EXPECT_EQ(told.reader.fileType, FileType::BinWithDataOffset) << length;
        EXPECT_THAT(told.reader.displayPixels, ElementsAre(0, 9, 100, 200, 255)) << length;
        EXPECT_THAT(told.lines, IsEmpty()) << length;
    }
}

TEST(BinReader, ReadsAFileTheSameWhenItsFirstSamplesLookLikeItsHeadersLength)
{
    // 10, 0, 0, 0 is what a header of ten bytes would say of itself.
    const BinRead read{BinFile().Size(6, 1).Samples(1, {10, 0, 0, 0, 200, 255}).Build()};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.fileType, FileType::BinWithDataOffset);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(10, 0, 0, 0, 200, 255));

    const BinRead other{BinFile().Size(6, 1).Samples(1, {14, 0, 0, 0, 200, 255}).Build()};
    EXPECT_TRUE(other.succeeded);
    EXPECT_EQ(other.reader.fileType, FileType::Bin);
    EXPECT_THAT(other.reader.displayPixels, ElementsAre(14, 0, 0, 0, 200, 255));
}

struct CoincidenceRow
{
    uint32_t headerLength;
    uint32_t width;
    size_t fileBytes;
};

TEST(BinReader, TakesEveryLengthThatAddsUpForTheHeaders)
{
    // Where the header claims to be shorter than it is, its own bytes are the first samples.
    constexpr CoincidenceRow rows[] = {
        {0, 14, 14}, {0, 20, 20}, {1, 13, 14}, {1, 40, 41}, {2, 12, 14},
        {9, 5, 14},  {9, 90, 99}, {11, 3, 14}, {13, 1, 14}, {13, 50, 63},
    };
    for (const CoincidenceRow& row : rows)
    {
        Bytes file = BinFile().Size(row.width, 1).HeaderLength(row.headerLength).Build();
        while (file.size() < row.fileBytes)
            file.push_back(static_cast<uint8_t>(7 * file.size()));
        ASSERT_EQ(file.size(), row.fileBytes);
        const StoredFrame frame = {
            .width = row.width, .height = 1, .bytes = {file.begin() + row.headerLength, file.end()}};

        const BinRead read{file};
        EXPECT_TRUE(read.succeeded) << row.headerLength;
        EXPECT_EQ(read.reader.fileType, FileType::BinWithDataOffset) << row.headerLength;
        EXPECT_EQ(read.reader.displayPixels, ReferenceDisplay(frame).pixels) << row.headerLength;
        EXPECT_THAT(read.lines, IsEmpty()) << row.headerLength;
    }
}

TEST(BinReader, AddsTheHeadersLengthIn64Bits)
{
    // With 2^32 left out each of these lengths would add up.
    constexpr CoincidenceRow rows[] = {
        {0xFFFFFFFF, 21, 20}, {0xFFFFFFFC, 24, 20}, {0x80000000, 0x80000014, 20}, {0xFFFFFFF6, 30, 20}};
    for (const CoincidenceRow& row : rows)
    {
        ByteWriter file;
        file.Put(uint16_t{1}).Put(row.width).Put(uint32_t{1}).Put(row.headerLength).PadTo(row.fileBytes);
        ExpectRefusal<RawImageBin>(file.bytes, {wrongFileSize}, row.headerLength,
                                   HasFacts({FileType::Bin, PixelType::UInt8, row.width, 1, 1}));
    }
}

TEST(BinReader, FindsTheSamplesBehindAHeaderOfAlmost4GiB)
{
    constexpr uint32_t length = 0xFFFFFFFE;
    ByteWriter header;
    header.Put(uint16_t{1}).Put(uint32_t{4}).Put(uint32_t{1}).Put(length);
    const SparseRead<RawImageBin> read{uint64_t{length} + 4, header.bytes, length, {0, 60, 70, 255}};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.fileType, FileType::BinWithDataOffset);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 60, 70, 255));
}

TEST(BinReader, CalculatesTheImagesSizeIn64Bits)
{
    // 65535 x 65535 doubles: 34358689800 bytes, far beyond 32 bits.
    constexpr uint64_t imageBytes = 34358689800;
    ByteWriter header;
    header.Put(uint16_t{8}).Put(uint32_t{65535}).Put(uint32_t{65535});
    const SparseRead<RawImageBin> facts{10 + imageBytes, header.bytes, 0, {}, 0};
    EXPECT_TRUE(facts.succeeded);
    EXPECT_EQ(facts.reader.fileType, FileType::Bin);
    EXPECT_EQ(facts.reader.pixelType, PixelType::Double64);

    // No frame of 4 GiB is ever read.
    const SparseRead<RawImageBin> frame{10 + imageBytes, header.bytes, 0, {}, 1};
    EXPECT_FALSE(frame.succeeded);
    EXPECT_THAT(frame.lines, ElementsAre(cannotReadImage));

    const SparseRead<RawImageBin> cut{10 + (imageBytes & 0xFFFFFFFF), header.bytes, 0, {}, 0};
    EXPECT_FALSE(cut.succeeded);
    EXPECT_THAT(cut.lines, ElementsAre(wrongFileSize));
}

TEST(BinReader, ReadsNoSamplesForTheFactsOfAFile)
{
    ExpectReadsOfOneWindow<RawImageBin>(BinFile().Size(3000, 2000).Samples(1, Bytes(6000000)).Build(), 0,
                                        6000000);
}

} // namespace
