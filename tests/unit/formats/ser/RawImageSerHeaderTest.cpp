#include "formats/RawImageSer.h"
#include "support/FileFacts.h"
#include "support/files/SerFile.h"
#include "support/streams/DamagedFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using SerRead = FileRead<RawImageSer>;

namespace {

const std::string wrongByteOrder = "[Lumora] SER: Unsupported byte order";
const std::string wrongStamp = "[Lumora] SER: Invalid stamp";
const std::string lowVersion = "[Lumora] SER: Too low version number";
const std::string not2D = "[Lumora] SER: No 2D data structure found";
const std::string noImages = "[Lumora] SER: No images found";

/// Two pictures of bytes.
SerFile TwoPictures()
{
    return SerFile().Element(2, 2, {0, 100, 200, 255}).Element(3, 1, {0, 64, 255});
}

TEST(SerReader, IsNotChosenForAnotherIdentifier)
{
    const FileOpen open{TwoPictures().Identifier(0x0297).Build()};
    EXPECT_FALSE(open.succeeded);
    EXPECT_THAT(open.lines, ElementsAre("[Lumora] Could not identify the file format"));
}

/// What a reader has found when its header is refused.
void ExpectRefusedHeader(const Bytes& file, const Lines& lines, size_t what = 0)
{
    ExpectRefusal<RawImageSer>(file, lines, what,
                               HasFacts({.fileType = FileType::Ser, .software = L"Pellox"}));
}

TEST(SerReader, RefusesEveryOtherByteOrder)
{
    constexpr uint16_t words[] = {0x0000, 0x4948, 0x494A, 0x4849, 0x4D4D, 0x4D49, 0x494D, 0x9494, 0xFFFF};
    for (const uint16_t word : words)
        ExpectRefusedHeader(TwoPictures().ByteOrderMark(word).Build(), {wrongByteOrder}, word);
}

TEST(SerReader, RefusesEveryOtherIdentifier)
{
    constexpr uint16_t words[] = {0x0000, 0x0196, 0x0198, 0x9701, 0x0097, 0x0100, 0x8197, 0xFFFF};
    for (const uint16_t word : words)
        ExpectRefusedHeader(TwoPictures().Identifier(word).Build(), {wrongStamp}, word);
}

TEST(SerReader, RefusesVersionsBefore0210)
{
    constexpr uint16_t words[] = {0x0000, 0x0001, 0x0010, 0x0110, 0x01FF, 0x0200, 0x0209, 0x020F};
    for (const uint16_t word : words)
        ExpectRefusedHeader(TwoPictures().Version(word).Build(), {lowVersion}, word);
}

TEST(SerReader, ReadsEveryLaterVersionWithLongOffsets)
{
    constexpr uint16_t words[] = {0x0210, 0x0211, 0x021F, 0x0220, 0x0221, 0x0300, 0x1002, 0x8000, 0xFFFF};
    for (const uint16_t word : words)
    {
        // The builder writes offsets of 4 bytes into a file of version 0x0210 and of 8 into all others.
        const SerRead read{TwoPictures().Version(word).Build(), 1, 1};
        EXPECT_TRUE(read.succeeded) << word;
        EXPECT_EQ(read.reader.frameCount, 2U) << word;
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 64, 255)) << word;
        EXPECT_THAT(read.lines, IsEmpty()) << word;
    }
}

TEST(SerReader, RefusesEveryStructureButPictures)
{
    for (const uint32_t word :
         {0U, 0x4120U, 0x4121U, 0x4123U, 0x2241U, 0x0022U, 0x00014122U, 0x80004122U, 0x41220000U, ~0U})
        ExpectRefusedHeader(TwoPictures().DataTypeIdentifier(word).Build(), {not2D}, word);
}

TEST(SerReader, FindsNoImagesWhereEitherCountIsZero)
{
    ExpectRefusedHeader(TwoPictures().TotalCount(10).ValidCount(0).Build(), {noImages});
    ExpectRefusedHeader(TwoPictures().TotalCount(0).ValidCount(10).Build(), {noImages});
    ExpectRefusedHeader(TwoPictures().TotalCount(0).ValidCount(2).Build(), {noImages});
    ExpectRefusedHeader(TwoPictures().TotalCount(0).ValidCount(0).Build(), {noImages});
    ExpectRefusedHeader(SerFile().Build(), {noImages});
    // The counts are looked at before the array's place is.
    ExpectRefusedHeader(TwoPictures().ValidCount(0).ArrayOffset(0xFFFFFFFF).Build(), {noImages});
}

TEST(SerReader, CountsTheValidElementsWhateverTheTotalIs)
{
    for (const uint32_t total : {1U, 2U, 3U, 0x80000000U, 0xFFFFFFFFU})
    {
        const SerRead both{TwoPictures().TotalCount(total).Build(), 1, 1};
        EXPECT_TRUE(both.succeeded) << total;
        EXPECT_EQ(both.reader.frameCount, 2U) << total;
        EXPECT_THAT(both.reader.displayPixels, ElementsAre(0, 64, 255)) << total;

        const SerRead first{TwoPictures().TotalCount(total).ValidCount(1).Build(), 1, 0};
        EXPECT_TRUE(first.succeeded) << total;
        EXPECT_EQ(first.reader.frameCount, 1U) << total;
        EXPECT_THAT(first.reader.displayPixels, ElementsAre(200, 255, 0, 100)) << total;
    }
}

TEST(SerReader, TellsOnlyTheFirstFault)
{
    const SerFile noPictures = TwoPictures().ValidCount(0).ArrayOffset(0xFFFFFFFF);
    const SerFile noStructure = SerFile{noPictures}.DataTypeIdentifier(0x4120);
    const SerFile tooOld = SerFile{noStructure}.Version(0x0200);
    const SerFile stamped = SerFile{tooOld}.Identifier(0x0198);
    const SerFile swapped = SerFile{stamped}.ByteOrderMark(0x4D4D);
    ExpectRefusedHeader(noPictures.Build(), {noImages});
    ExpectRefusedHeader(noStructure.Build(), {not2D});
    ExpectRefusedHeader(tooOld.Build(), {lowVersion});
    ExpectRefusedHeader(stamped.Build(), {wrongStamp});
    ExpectRefusedHeader(swapped.Build(), {wrongByteOrder});
}

TEST(SerReader, TellsAFaultAsSoonAsItsFieldIsComplete)
{
    struct Row
    {
        SerFile file;
        size_t fieldEnd;
        std::string line;
    };
    const Row rows[] = {
        {TwoPictures().ByteOrderMark(0), 2, wrongByteOrder},
        {TwoPictures().Identifier(0), 4, wrongStamp},
        {TwoPictures().Version(0), 6, lowVersion},
        {TwoPictures().DataTypeIdentifier(0), 10, not2D},
    };
    for (const Row& row : rows)
    {
        const Bytes whole = row.file.Build();
        for (size_t length = 0; length <= whole.size(); ++length)
            ExpectRefusedHeader(FirstBytes(whole, length), length < row.fieldEnd ? Lines{} : Lines{row.line},
                                length);
    }
}

TEST(SerReader, IgnoresTagsAndCalibration)
{
    const Bytes plain = TwoPictures().Build();
    Bytes noisy = plain;
    constexpr size_t tagTypeAndCalibrations[][2] = {{10, 14}, {34, 74}, {88, 128}};
    for (const auto& [first, end] : tagTypeAndCalibrations)
        for (size_t place = first; place < end; ++place)
            noisy.at(place) = 0x22;
    // Tags follow the elements.
    noisy.insert(noisy.end(), 100, 0x33);
    for (const uint32_t frameIndex : {0U, 1U})
    {
        const SerRead read{noisy, 1, frameIndex};
        EXPECT_TRUE(read.succeeded);
        EXPECT_EQ(read.reader.displayPixels, SerRead(plain, 1, frameIndex).reader.displayPixels);
        EXPECT_THAT(read.reader.displayPixels, testing::Not(IsEmpty()));
        EXPECT_THAT(read.lines, IsEmpty());
    }
}

} // namespace
