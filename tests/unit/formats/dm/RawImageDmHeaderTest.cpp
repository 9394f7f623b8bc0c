#include "support/DmReaderTest.h"
#include "support/FileFacts.h"
#include "support/streams/DamagedFile.h"
#include "support/streams/ReaderExpectations.h"
#include "support/streams/SparseRead.h"

#include <gmock/gmock.h>

#include <optional>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;

namespace {

const std::string noThumbnail = "[Lumora] DM: No thumbnail image found";

/// A file of version 3 in every byte: one image of 3 x 1 samples of 16 bits. Its array has 2^30 + 2 elements
/// of 4 bytes, which are 8 bytes in 32 bits.
const Bytes version3 = {
    0,    0,   0,   3,                                      // version
    0,    0,   0,   125,                                    // size of the root group
    0,    0,   0,   1,                                      // byte order
    1,    0,   0,   0,   0,   3,                            // root group of three tags
    0x15, 0,   4,   'D', 'a', 't', 'a',                     // a data tag and its label
    '%',  '%', '%', '%', 0,   0,   0,   3,                  // described by three words
    0,    0,   0,   20,  0,   0,   0,   5,                  // an array of 32-bit unsigned elements
    0x40, 0,   0,   2,                                      // number of elements
    0,    0,   99,  0,   255, 0,   0,   0,                  // the elements
    0x15, 0,   8,   'D', 'a', 't', 'a', 'T', 'y', 'p', 'e', //
    '%',  '%', '%', '%', 0,   0,   0,   1,   0,   0,   0,   5,   10,  0, 0, 0,          // unsigned, 10
    0x14, 0,   10,  'D', 'i', 'm', 'e', 'n', 's', 'i', 'o', 'n', 's',                   // a tag group
    1,    0,   0,   0,   0,   2,                                                        // of two tags
    0x15, 0,   0,   '%', '%', '%', '%', 0,   0,   0,   1,   0,   0,   0, 5, 3, 0, 0, 0, // 3
    0x15, 0,   0,   '%', '%', '%', '%', 0,   0,   0,   1,   0,   0,   0, 5, 1, 0, 0, 0, // 1
    0,    0,   0,   0,   0,   0,   0,   0,
};

/// The same as a file of version 4.
const Bytes version4 = {
    0,    0,   0,   4,                                                                     // version
    0,    0,   0,   0,   0,    0,   0,   213,                                              // root group
    0,    0,   0,   1,                                                                     // byte order
    1,    0,   0,   0,   0,    0,   0,   0,   0,   3,                                      // root group
    0x15, 0,   4,   'D', 'a',  't', 'a', 0,   0,   0,   0,   0,   0,   0, 44,              // size of contents
    '%',  '%', '%', '%', 0,    0,   0,   0,   0,   0,   0,   3,                            //
    0,    0,   0,   0,   0,    0,   0,   20,  0,   0,   0,   0,   0,   0, 0,  5,           //
    0,    0,   0,   0,   0x40, 0,   0,   2,   0,   0,   99,  0,   255, 0, 0,  0,           //
    0x15, 0,   8,   'D', 'a',  't', 'a', 'T', 'y', 'p', 'e', 0,   0,   0, 0,  0, 0, 0, 24, //
    '%',  '%', '%', '%', 0,    0,   0,   0,   0,   0,   0,   1,                            //
    0,    0,   0,   0,   0,    0,   0,   5,   10,  0,   0,   0,                            //
    0x14, 0,   10,  'D', 'i',  'm', 'e', 'n', 's', 'i', 'o', 'n', 's',                     //
    0,    0,   0,   0,   0,    0,   0,   80,                                               //
    1,    0,   0,   0,   0,    0,   0,   0,   0,   2,                                      //
    0x15, 0,   0,   0,   0,    0,   0,   0,   0,   0,   24,                                //
    '%',  '%', '%', '%', 0,    0,   0,   0,   0,   0,   0,   1,                            //
    0,    0,   0,   0,   0,    0,   0,   5,   3,   0,   0,   0,                            //
    0x15, 0,   0,   0,   0,    0,   0,   0,   0,   0,   24,                                //
    '%',  '%', '%', '%', 0,    0,   0,   0,   0,   0,   0,   1,                            //
    0,    0,   0,   0,   0,    0,   0,   5,   1,   0,   0,   0,                            //
    0,    0,   0,   0,   0,    0,   0,   0,
};

/// The tags of the files above.
DmTags HandWrittenTags(const DmLayout& layout)
{
    return DmTags{layout}
        .Array("Data", DmType::uint32, 0x40000002, {0, 0, 99, 0, 255, 0, 0, 0})
        .UInt32("DataType", 10)
        .Group("Dimensions", DmTags{layout}.UInt32("", 3).UInt32("", 1));
}

TYPED_TEST(DmReader, ReadsAFileWrittenByHand)
{
    const Bytes& file = this->layout.version == 4 ? version4 : version3;
    EXPECT_EQ(this->File(HandWrittenTags(this->layout)).Build(), file);

    const FileOpen open{file};
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.image.Reader()->fileType, this->layout.version == 4 ? FileType::Dm4 : FileType::Dm3);
    EXPECT_THAT(open.image.Reader()->displayPixels, ElementsAre(0, 99, 255));
    EXPECT_THAT(open.lines, ElementsAre(noThumbnail));
}

/// Expects that the file is refused before anything is known of an image.
template <typename Reader>
void ExpectRefusedHeader(const Bytes& file, const Lines& lines, size_t what)
{
    ExpectRefusal<Reader>(file, lines, what, HasFacts(DmFacts<Reader>()));
}

TYPED_TEST(DmReader, RefusesEveryOtherVersion)
{
    for (const uint32_t version :
         {0U, 1U, 2U, 7U - this->layout.version, 5U, 0x103U, 0x104U, 0x03000000U, 0x04000000U, 0xFFFFFFFFU})
        ExpectRefusedHeader<TypeParam>(this->File(HandWrittenTags(this->layout)).Version(version).Build(),
                                       {this->Line("Invalid version number")}, version);
}

TYPED_TEST(DmReader, RefusesBigEndianValuesAndTakesEveryOtherByteOrderWordForLittleEndian)
{
    DmFile file = this->File(HandWrittenTags(this->layout));
    ExpectRefusedHeader<TypeParam>(file.ByteOrderWord(0).Build(),
                                   {this->Line("Big endian byte ordering for data is not supported")}, 0);
    for (const uint32_t word : {1U, 2U, 0x100U, 0x01000000U, 0x80000000U, 0xFFFFFFFFU})
    {
        const FileRead<TypeParam> read{file.ByteOrderWord(word).Build()};
        EXPECT_TRUE(read.succeeded) << word;
        EXPECT_EQ(read.reader.byteOrder, ByteOrder::LittleEndian) << word;
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 99, 255)) << word;
    }
}

TYPED_TEST(DmReader, ReportsTheFirstOfSeveralFaultsOfTheHeader)
{
    DmFile file = this->File(HandWrittenTags(this->layout)).ByteOrderWord(0).ClaimRootBytes(0);
    ExpectRefusedHeader<TypeParam>(file.Build(), {this->Line("Invalid checksum (number of bytes)")}, 0);
    ExpectRefusedHeader<TypeParam>(file.Version(0).Build(), {this->Line("Invalid version number")}, 0);
}

TEST(Dm3Reader, TakesARootGroupOfAnySizeUpToTheWholeStream)
{
    const Lines invalid = {"[Lumora] DM3: Invalid checksum (number of bytes)"};
    DmFile file = DmFile{{3}}.Root(HandWrittenTags({3}));
    const auto streamBytes = static_cast<uint32_t>(file.Build().size());
    ASSERT_EQ(streamBytes, 145U);
    for (const uint32_t size : {1U, 124U, 125U, 126U, 144U, 145U})
        EXPECT_TRUE(FileRead<RawImageDm3>(file.ClaimRootBytes(size).Build()).succeeded) << size;
    for (const uint32_t size : {0U, 146U, 0x80000000U, 0xFFFFFFFFU})
        ExpectRefusedHeader<RawImageDm3>(file.ClaimRootBytes(size).Build(), invalid, size);
}

TEST(Dm4Reader, TakesOnlyTheExactSizeOfTheRootGroup)
{
    const Lines invalid = {"[Lumora] DM4: Invalid checksum (number of bytes)"};
    DmFile file = DmFile{{4}}.Root(HandWrittenTags({4}));
    ASSERT_EQ(file.Build().size(), 213U + 24U);
    EXPECT_TRUE(FileRead<RawImageDm4>(file.ClaimRootBytes(213).Build()).succeeded);
    for (const uint32_t size : {0U, 1U, 212U, 214U, 237U, 0x80000000U + 213, 0xFFFFFFFFU})
        ExpectRefusedHeader<RawImageDm4>(file.ClaimRootBytes(size).Build(), invalid, size);
}

TEST(Dm4Reader, UsesTheLowerHalvesOfWideFieldsOnly)
{
    for (const uint32_t upperHalf : {0U, 1U, 0x80000000U, 0xFFFFFFFFU})
    {
        const DmLayout layout{4, upperHalf};
        const DmTags others = DmTags{layout}
                                  .String("Text", u"abc")
                                  .Struct("Point", {DmType::int16, DmType::float64}, Bytes(10))
                                  .StructArray("Points", {DmType::int16, DmType::int32}, 2, Bytes(12))
                                  .Array("Row", DmType::uint16, 3, Bytes(6));
        const DmFile file = DmFile{layout}.Root(
            DmTags{layout}.Group("Others", others).Image(SmallNumberedImage(7)).Group("", DmTags{layout}));
        const FileRead<RawImageDm4> read{file.Build()};
        EXPECT_TRUE(read.succeeded) << upperHalf;
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 7, 255)) << upperHalf;
    }
}

/// Reads a header's facts from a stream that holds the file's bytes, something that is no tag group, and
/// zeros from there to its end.
template <typename Reader>
void ExpectOfHugeStream(uint64_t streamSize, Bytes file, const Lines& lines)
{
    file.insert(file.end(), 32, 0xEE);
    const SparseRead<Reader> read{streamSize, file, 0, {}, 0};
    EXPECT_EQ(read.succeeded, lines == Lines{noThumbnail}) << streamSize;
    EXPECT_EQ(read.lines, lines) << streamSize;
}

TEST(Dm3Reader, TakesARootGroupOfAnySizeInAStreamOfMoreThan32Bits)
{
    DmFile file = DmFile{{3}}.Root(HandWrittenTags({3}));
    for (const uint32_t size : {1U, 0xFFFFFFFFU})
        for (const uint64_t streamSize : {0xFFFFFFFFULL, 0x100000000ULL, 0x4000000000ULL})
            ExpectOfHugeStream<RawImageDm3>(streamSize, file.ClaimRootBytes(size).Build(), {noThumbnail});
    ExpectOfHugeStream<RawImageDm3>(0xFFFFFFFE, file.ClaimRootBytes(0xFFFFFFFF).Build(),
                                    {"[Lumora] DM3: Invalid checksum (number of bytes)"});
}

// The size is compared as 32 bits widened to 64, so no larger file ever passes, even with an honest size.
TEST(Dm4Reader, TakesNoStreamWhoseRootGroupIsLargerThan32Bits)
{
    const auto fileOf = [](uint64_t rootBytes) {
        const DmLayout layout{4, static_cast<uint32_t>(rootBytes >> 32)};
        return DmFile{layout}
            .Root(HandWrittenTags(layout))
            .ClaimRootBytes(static_cast<uint32_t>(rootBytes))
            .Build();
    };
    ExpectOfHugeStream<RawImageDm4>(0xFFFFFFFFULL + 24, fileOf(0xFFFFFFFF), {noThumbnail});
    for (const uint64_t rootBytes : {0x100000000ULL, 0x100000001ULL, 0x400000000ULL + 5})
        ExpectOfHugeStream<RawImageDm4>(rootBytes + 24, fileOf(rootBytes),
                                        {"[Lumora] DM4: Invalid checksum (number of bytes)"});
}

/// The header and what follows it is zero, so that no image can be found.
struct HeaderLengthRow
{
    size_t first;
    size_t last;
    Lines lines;
};

TEST(Dm3Reader, RefusesAHeaderThatIsCutSilently)
{
    const Bytes whole = DmFile{{3}}.ClaimRootBytes(9).Build();
    ASSERT_EQ(whole.size(), 20U);
    const HeaderLengthRow rows[] = {
        // Without its version or its size word.
        {0, 7, {}},
        // The size word is there and larger than the stream.
        {8, 8, {"[Lumora] DM3: Invalid checksum (number of bytes)"}},
        // It is not, but the byte-order word is missing.
        {9, 11, {}},
        {12, 20, {"[Lumora] DM3: No images found"}},
    };
    for (const HeaderLengthRow& row : rows)
        for (size_t length = row.first; length <= row.last; ++length)
            ExpectRefusedHeader<RawImageDm3>(FirstBytes(whole, length), row.lines, length);
}

TEST(Dm4Reader, RefusesAHeaderThatIsCut)
{
    const Bytes whole = DmFile{{4}}.Build();
    ASSERT_EQ(whole.size(), 24U);
    const HeaderLengthRow rows[] = {
        {0, 11, {}},
        // No size word equals the size of a stream of less than 24 bytes, less 24.
        {12, 23, {"[Lumora] DM4: Invalid checksum (number of bytes)"}},
        {24, 24, {"[Lumora] DM4: No images found"}},
    };
    for (const HeaderLengthRow& row : rows)
        for (size_t length = row.first; length <= row.last; ++length)
            ExpectRefusedHeader<RawImageDm4>(FirstBytes(whole, length), row.lines, length);
}

TYPED_TEST(DmReader, ReportsAWrongVersionAsSoonAsItsWordIsThere)
{
    for (size_t length = 0; length <= 24; ++length)
        ExpectRefusedHeader<TypeParam>(
            Bytes(length, 7), length < 4 ? Lines{} : Lines{this->Line("Invalid version number")}, length);
}

} // namespace
