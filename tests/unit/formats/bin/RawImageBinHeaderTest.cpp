#include "formats/bin/RawImageBin.h"
#include "support/FileFacts.h"
#include "support/files/BinFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using BinRead = FileRead<RawImageBin>;

namespace {

const std::string wrongType = "[Lumora] BIN: Unsupported pixel type";
const std::string wrongIndex = "[Lumora] BIN: Invalid frame index";
const std::string wrongFileSize =
    "[Lumora] BIN: File size does not match with the image properties in the header";

TEST(BinReader, IsChosenByAPlausibleTypeAndSize)
{
    struct Row
    {
        uint16_t type;
        uint32_t width;
        uint32_t height;
        size_t samples;
        bool identified;
    };
    constexpr Row rows[] = {
        {1, 9, 9, 81, true},         {8, 9, 9, 648, true},        {1, 256, 1, 256, true},
        {1, 65535, 1, 65535, true},  {9, 9, 9, 81, false},        {0x0101, 9, 9, 81, false},
        {1, 65537, 1, 65537, false}, {1, 1, 65537, 65537, false},
    };
    for (const Row& row : rows)
    {
        const FileOpen open{
            BinFile().Size(row.width, row.height).Samples(row.type, Bytes(row.samples)).Build()};
        EXPECT_EQ(open.succeeded, row.identified) << row.type;
        if (row.identified)
        {
            ASSERT_TRUE(open.succeeded) << row.type;
            EXPECT_EQ(open.image.Reader()->fileType, FileType::Bin) << row.type;
        }
        else
        {
            EXPECT_THAT(open.lines, ElementsAre("[Lumora] Could not identify the file format")) << row.type;
        }
    }
}

TEST(BinReader, RefusesEveryOtherTypeBeforeItLooksFurther)
{
    constexpr uint16_t types[] = {0, 9, 10, 11, 16, 255, 256, 257, 0x0801, 0x8001, 0xFFFF};
    for (const uint16_t type : types)
        for (const size_t samples : {size_t{4}, size_t{5}, size_t{40}})
            for (const uint32_t frameIndex : {0U, 1U})
                ExpectRefusal<RawImageBin>(BinFile().Size(4, 1).Samples(type, Bytes(samples)).Build(),
                                           {wrongType}, type, HasFacts({.fileType = FileType::Bin}),
                                           frameIndex);
}

TEST(BinReader, HoldsASingleFrame)
{
    for (const uint32_t frameIndex : {1U, 2U, 0x80000000U, 0xFFFFFFFFU})
        for (const size_t samples : {size_t{4}, size_t{8}, size_t{400}})
            ExpectRefusal<RawImageBin>(BinFile().Size(4, 1).Samples(1, Bytes(samples)).Build(), {wrongIndex},
                                       frameIndex, HasFacts({FileType::Bin, PixelType::UInt8, 4, 1, 1}),
                                       frameIndex);
}

TEST(BinReader, RefusesAFileThatIsLongerOrShorterThanItsImage)
{
    for (const bool tellsItsLength : {false, true})
        for (const int difference : {-4, -1, 1, 4, 10000})
        {
            BinFile bin = BinFile().Size(100, 50).Samples(2, Bytes(static_cast<size_t>(10000 + difference)));
            if (tellsItsLength)
                bin.HeaderLength(16);
            ExpectRefusal<RawImageBin>(bin.Build(), {wrongFileSize}, difference,
                                       HasFacts({FileType::Bin, PixelType::UInt16, 100, 50, 1}));
        }
}

TEST(BinReader, RefusesASizeThatTheFileDoesNotHave)
{
    constexpr uint32_t sizes[][2] = {
        {5, 1},
        {3, 1},
        {4, 2},
        {0, 1},
        {0x10000, 0x10000},
        {0x80000000, 1},
        {1, 0x80000000},
        {0xFFFFFFFF, 1},
        {1, 0xFFFFFFFF},
        {0x10004, 1},
        // 4 modulo 2^32.
        {0x40000001, 4},
        {0x80000002, 2},
        {0x10002, 0x8002},
    };
    for (const auto& [width, height] : sizes)
        ExpectRefusal<RawImageBin>(BinFile().Size(width, height).Samples(1, {1, 2, 3, 4}).Build(),
                                   {wrongFileSize}, testing::Message() << width << " x " << height);
}

TEST(BinReader, CannotReadImagesOfLessThanFourBytesWithAShortHeader)
{
    struct Row
    {
        uint16_t type;
        uint32_t width;
        size_t samples;
        bool succeeds;
    };
    // The word that might be the header's length is not there.
    constexpr Row rows[] = {
        {1, 1, 1, false}, {1, 2, 2, false}, {1, 3, 3, false}, {2, 1, 2, false}, {4, 1, 1, false},
        {5, 1, 2, false}, {1, 4, 4, true},  {2, 2, 4, true},  {3, 1, 4, true},  {7, 1, 4, true},
    };
    for (const Row& row : rows)
    {
        const BinRead read{BinFile().Size(row.width, 1).Samples(row.type, Bytes(row.samples, 1)).Build(), 0};
        EXPECT_EQ(read.succeeded, row.succeeds) << row.type << ", " << row.width;
        EXPECT_THAT(read.lines, IsEmpty()) << row.type << ", " << row.width;
    }

    const BinRead told{BinFile().HeaderLength(14).Samples(1, {0}).Build()};
    EXPECT_TRUE(told.succeeded);
    EXPECT_THAT(told.reader.displayPixels, ElementsAre(0));
}

TEST(BinReader, LeavesAnEmptyImageToTheDisplay)
{
    for (const uint32_t width : {0U, 7U})
        ExpectFactsWithoutFrame<RawImageBin>(
            BinFile().Size(width, 0).HeaderLength(20).Build(), 0, invalidResolution,
            HasFacts({FileType::BinWithDataOffset, PixelType::UInt8, width, 0, 1}));
    ExpectFactsWithoutFrame<RawImageBin>(BinFile().Size(65536, 1).Samples(1, Bytes(65536)).Build(), 0,
                                         invalidResolution,
                                         HasFacts({FileType::Bin, PixelType::UInt8, 65536, 1, 1}));
}

} // namespace
