#include "formats/RawImageRaw.h"
#include "support/FileFacts.h"
#include "support/files/RawFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using RawRead = FileRead<RawImageRaw>;

namespace {

const std::string wrongIndex = "[Lumora] RAW: Invalid frame index";
const std::string notWholeBytes = "[Lumora] RAW: Invalid pixel type (not a multiple of 8-bits)";
const std::string correctedBits = "[Lumora] RAW: The bits per pixel in the file header is not correct";
const std::string wrongType = "[Lumora] RAW: Unsupported pixel type";

TEST(RawReader, IsChosenByItsSignatureAndDoesNotLookAtItAgain)
{
    Bytes file = RawFile().Size(4, 4).Samples(8, RawFile::Unsigned, Bytes(16, 9)).Build();
    const FileOpen open{file};
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.image.Reader()->fileType, FileType::Raw);

    for (size_t place = 0; place < 17; ++place)
    {
        Bytes changed = file;
        changed.at(place) ^= 0x80;
        EXPECT_TRUE(RawRead(changed).succeeded) << place;
        const FileOpen reopened{changed};
        EXPECT_EQ(reopened.succeeded, place >= 13) << place;
        EXPECT_EQ(reopened.lines,
                  place >= 13 ? Lines{} : Lines{"[Lumora] Could not identify the file format"})
            << place;
    }
}

TEST(RawReader, HoldsASingleFrameHoweverManySamplesFollow)
{
    const Bytes file = RawFile().Size(2, 3).Samples(8, 0, Bytes(600)).Build();
    for (const uint32_t frameIndex : {1U, 2U, 0x80000000U, 0xFFFFFFFFU})
        ExpectRefusal<RawImageRaw>(file, {wrongIndex}, frameIndex,
                                   HasFacts({FileType::Raw, PixelType::Unknown, 2, 3, 1}), frameIndex);
}

TEST(RawReader, LooksAtTheIndexBeforeThePixels)
{
    const RawRead bits{RawFile().Size(2, 3).Samples(12, 9, Bytes(5)).Build(), 0, 1};
    EXPECT_THAT(bits.lines, ElementsAre(wrongIndex));
    const RawRead kind{RawFile().Size(2, 3).Samples(8, 9, Bytes(6)).Build(), 0, 1};
    EXPECT_THAT(kind.lines, ElementsAre(wrongIndex));
}

struct TypeRow
{
    uint32_t kind;
    uint32_t sampleBytes;
    PixelType pixelType;
};

constexpr TypeRow knownTypes[] = {
    {RawFile::Unsigned, 1, PixelType::UInt8},        {RawFile::Unsigned, 2, PixelType::UInt16},
    {RawFile::Unsigned, 4, PixelType::UInt32},       {RawFile::Signed, 1, PixelType::Int8},
    {RawFile::Signed, 2, PixelType::Int16},          {RawFile::Signed, 4, PixelType::Int32},
    {RawFile::FloatingPoint, 4, PixelType::Float32}, {RawFile::FloatingPoint, 8, PixelType::Double64},
    {RawFile::Colours, 3, PixelType::RGB24},
};

PixelType TypeOf(uint32_t kind, uint32_t sampleBytes)
{
    const auto* row = std::find_if(std::begin(knownTypes), std::end(knownTypes), [&](const TypeRow& known) {
        return known.kind == kind && known.sampleBytes == sampleBytes;
    });
    return row != std::end(knownTypes) ? row->pixelType : PixelType::Unknown;
}

TEST(RawReader, JudgesTheKindOfSamplesTogetherWithTheirSize)
{
    for (const uint32_t kind : {0U, 1U, 2U, 3U, 4U, 5U, 256U, 0x10000U, 0x80000000U, 0xFFFFFFFFU})
        for (const uint32_t sampleBytes :
             {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 12U, 16U, 256U, 257U, 0x10000001U, 0x1FFFFFFFU})
            for (const uint32_t mode : {0U, 1U})
            {
                const PixelType expected = TypeOf(kind, sampleBytes);
                const auto file = RawFile().Size(3, 2).Samples(8 * sampleBytes, kind, Bytes(48));
                const RawRead read{file.Build(), mode};
                EXPECT_EQ(read.succeeded, expected != PixelType::Unknown) << kind << " of " << sampleBytes;
                EXPECT_EQ(read.reader.pixelType, expected) << kind << " of " << sampleBytes;
                if (expected == PixelType::Unknown)
                {
                    EXPECT_THAT(read.lines, ElementsAre(wrongType)) << kind << " of " << sampleBytes;
                    EXPECT_THAT(read.reader.displayPixels, IsEmpty());
                }
            }
}

struct BitsRow
{
    const char* what;
    uint32_t bits;
    uint32_t kind;
    uint32_t width;
    uint32_t height;
    /// Bytes behind the header.
    size_t dataBytes;
    PixelType pixelType;
    Lines lines;
};

TEST(RawReader, DerivesTheSizeOfASampleWhereTheHeaderHasNoWholeBytes)
{
    const BitsRow rows[] = {
        {"2 bytes", 12, 0, 100, 100, 20000, PixelType::UInt16, {correctedBits}},
        {"3 bytes", 12, 0, 100, 100, 30000, {}, {notWholeBytes}},
        {"3 bytes for colours", 12, 3, 100, 100, 30000, {}, {notWholeBytes}},
        {"1 byte", 1, 0, 100, 100, 10000, PixelType::UInt8, {correctedBits}},
        {"1 signed byte", 7, 1, 100, 100, 10000, PixelType::Int8, {correctedBits}},
        {"4 bytes", 31, 0, 100, 100, 40000, PixelType::UInt32, {correctedBits}},
        {"a single", 33, 2, 100, 100, 40000, PixelType::Float32, {correctedBits}},
        {"a double", 63, 2, 100, 100, 80000, PixelType::Double64, {correctedBits}},
        {"all bits", 0xFFFFFFFF, 2, 100, 100, 80000, PixelType::Double64, {correctedBits}},
        {"no bytes", 12, 0, 100, 100, 0, {}, {notWholeBytes}},
        {"less than a byte", 12, 0, 100, 100, 9999, {}, {notWholeBytes}},
        {"5 bytes", 12, 0, 100, 100, 50000, {}, {notWholeBytes}},
        {"6 bytes", 12, 0, 100, 100, 60000, {}, {notWholeBytes}},
        {"7 bytes", 12, 0, 100, 100, 70000, {}, {notWholeBytes}},
        {"9 bytes", 12, 0, 100, 100, 90000, {}, {notWholeBytes}},
        {"16 bytes", 12, 0, 100, 100, 160000, {}, {notWholeBytes}},
        {"a byte too many", 12, 0, 100, 100, 20001, {}, {notWholeBytes}},
        {"a byte too few", 12, 0, 100, 100, 19999, {}, {notWholeBytes}},
        // The size is found, but nothing is known of such samples.
        {"8 bytes, unsigned", 12, 0, 100, 100, 80000, {}, {correctedBits, wrongType}},
        {"8 bytes, signed", 12, 1, 100, 100, 80000, {}, {correctedBits, wrongType}},
        {"half a single", 12, 2, 100, 100, 20000, {}, {correctedBits, wrongType}},
        {"a byte of colours", 12, 3, 100, 100, 10000, {}, {correctedBits, wrongType}},
        {"4 bytes of colours", 12, 3, 100, 100, 40000, {}, {correctedBits, wrongType}},
        {"another kind", 12, 4, 100, 100, 10000, {}, {correctedBits, wrongType}},
        // Nothing to divide by.
        {"no width", 12, 0, 0, 100, 100, {}, {notWholeBytes}},
        {"no height", 12, 0, 100, 0, 100, {}, {notWholeBytes}},
        {"neither", 12, 0, 0, 0, 0, {}, {notWholeBytes}},
        {"a product of 2^32", 12, 0, 0x10000, 0x10000, 100, {}, {notWholeBytes}},
        {"a product of 2^33", 12, 0, 0x80000000, 4, 100, {}, {notWholeBytes}},
        // The product is taken in 32 bits.
        {"a product of 2^32 + 2", 12, 0, 0x80000001, 2, 2, PixelType::UInt8, {correctedBits}},
        {"a product of 2^32 + 131073", 12, 0, 65537, 65537, 262146, PixelType::UInt16, {correctedBits}},
    };
    for (const BitsRow& row : rows)
    {
        const auto file =
            RawFile().Size(row.width, row.height).Samples(row.bits, row.kind, Bytes(row.dataBytes));
        const RawRead read{file.Build(), 0};
        EXPECT_EQ(read.succeeded, row.pixelType != PixelType::Unknown) << row.what;
        EXPECT_EQ(read.lines, row.lines) << row.what;
        EXPECT_THAT(read.reader, HasFacts({FileType::Raw, row.pixelType, row.width, row.height, 1}))
            << row.what;
    }
}

TEST(RawReader, DoesNotDoubtWholeBytes)
{
    // The file has two bytes a pixel, the header says otherwise.
    const auto file = RawFile().Size(100, 100);
    struct Row
    {
        uint32_t bits;
        PixelType pixelType;
        Lines lines;
    };
    const Row rows[] = {
        {8, PixelType::UInt8, {}},     {16, PixelType::UInt16, {}}, {32, PixelType::UInt32, {}},
        {0, {}, {wrongType}},          {24, {}, {wrongType}},       {64, {}, {wrongType}},
        {0xFFFFFFF8, {}, {wrongType}},
    };
    for (const Row& row : rows)
    {
        const RawRead read{RawFile{file}.Samples(row.bits, 0, Bytes(20000)).Build(), 0};
        EXPECT_EQ(read.reader.pixelType, row.pixelType) << row.bits;
        EXPECT_EQ(read.lines, row.lines) << row.bits;
    }
}

TEST(RawReader, DerivesTheSizeOfASampleAsIfThereWereNoGap)
{
    struct Row
    {
        uint32_t gap;
        PixelType pixelType;
        Lines headerLines;
        Lines frameLines;
    };
    // Ten times ten samples of a byte.
    const Row rows[] = {
        {0, PixelType::UInt8, {correctedBits}, {correctedBits}},
        {1, {}, {notWholeBytes}, {notWholeBytes}},
        // The gap is taken for second bytes, which are missing at the end.
        {100, PixelType::UInt16, {correctedBits}, {correctedBits, cannotReadImage}},
        {200, {}, {notWholeBytes}, {notWholeBytes}},
    };
    for (const Row& row : rows)
    {
        const Bytes file = RawFile().Size(10, 10).Samples(12, 0, Bytes(100, 5)).Gap(row.gap).Build();
        const RawRead header{file, 0};
        EXPECT_EQ(header.succeeded, row.pixelType != PixelType::Unknown) << row.gap;
        EXPECT_EQ(header.reader.pixelType, row.pixelType) << row.gap;
        EXPECT_EQ(header.lines, row.headerLines) << row.gap;
        const RawRead frame{file, 1};
        EXPECT_EQ(frame.succeeded, row.gap == 0) << row.gap;
        EXPECT_EQ(frame.lines, row.frameLines) << row.gap;
    }
}

TEST(RawReader, LeavesTheSizeToTheDisplay)
{
    struct Row
    {
        uint32_t width;
        uint32_t height;
        std::string line;
    };
    const Row rows[] = {
        {0, 1, invalidResolution},
        {1, 0, invalidResolution},
        {0, 0, invalidResolution},
        {65536, 1, invalidResolution},
        {1, 65536, invalidResolution},
        {0x80000001, 2, invalidResolution},
        {0xFFFFFFFF, 0xFFFFFFFF, invalidResolution},
        {65535, 65535, cannotReadImage},
        {5, 1, cannotReadImage},
    };
    for (const Row& row : rows)
        ExpectFactsWithoutFrame<RawImageRaw>(
            RawFile().Size(row.width, row.height).Samples(8, 0, {1, 2, 3, 4}).Build(), 0, row.line,
            HasFacts({FileType::Raw, PixelType::UInt8, row.width, row.height, 1}));
}

} // namespace
