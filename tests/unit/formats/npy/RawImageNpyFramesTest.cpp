#include "formats/RawImageNpy.h"
#include "support/FileFacts.h"
#include "support/display/FourSamples.h"
#include "support/display/ReferenceDisplay.h"
#include "support/display/VariedSamples.h"
#include "support/files/NpyFile.h"
#include "support/streams/ReaderExpectations.h"
#include "support/streams/SparseRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using NpyRead = FileRead<RawImageNpy>;

namespace {

const std::string invalidDataSize = "[Lumora] NPY: Invalid data size";
const std::string noSuchFrame = "[Lumora] NPY: Frame index is out of range";
const std::string zeroRange = "[Lumora] The found dynamic range is zero";

struct TypeRow
{
    const char* descr;
    PixelType pixelType;
};

constexpr TypeRow types[] = {
    {"|u1", PixelType::UInt8},       {"<u2", PixelType::UInt16},   {"<u4", PixelType::UInt32},
    {"|i1", PixelType::Int8},        {"<i2", PixelType::Int16},    {"<i4", PixelType::Int32},
    {"<f4", PixelType::Float32},     {"<f8", PixelType::Double64}, {"<c8", PixelType::Complex64},
    {"<c16", PixelType::Complex128},
};

TEST(NpyReader, ShowsTheFirstStoredRowAtTheTop)
{
    for (const TypeRow& row : types)
    {
        const FourSamples samples = FourSamplesOf(row.pixelType);
        const NpyRead read{NpyFile().Descr(row.descr).Shape("(2, 2)").Samples(samples.stored).Build()};
        EXPECT_TRUE(read.succeeded) << row.descr;
        EXPECT_EQ(read.reader.displayPixels, samples.picture) << row.descr;
        EXPECT_THAT(read.lines, IsEmpty()) << row.descr;
    }
}

TEST(NpyReader, ShowsColoursAsStored)
{
    const Bytes colours = {1, 2, 3, 40, 50, 60, 7, 8, 9, 253, 254, 255, 0, 100, 200, 30, 20, 10};
    const NpyRead read{NpyFile().Descr("|u1").Shape("(2, 3, 3)").Samples(colours).Build()};

    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.displayPixels, colours);
    EXPECT_THAT(read.lines, IsEmpty());
}

TEST(NpyReader, TakesBigEndianSamplesAsLittleEndianOnes)
{
    // 1, 2 and 3 as they are stored in the other order are 256, 512 and 768.
    const NpyRead read{NpyFile().Descr(">u2").Shape("(1, 3)").Samples({0, 1, 0, 2, 0, 3}).Build()};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.byteOrder, ByteOrder::LittleEndian);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 127, 255));
    EXPECT_THAT(read.lines, IsEmpty());
}

TEST(NpyReader, ShowsEachFrameOfAStackOfEveryType)
{
    for (const TypeRow& row : types)
    {
        SCOPED_TRACE(row.descr);
        const size_t frameBytes = size_t{7} * 5 * BytesPerPixel(row.pixelType);
        const Bytes samples = VariedSamples(row.pixelType, 3 * 7 * 5);
        ASSERT_EQ(samples.size(), 3 * frameBytes);
        const Bytes file =
            NpyFile().Descr(row.descr).Shape("(3, 7, 5)").HeaderLength(310).Samples(samples).Build();
        for (uint32_t frameIndex = 0; frameIndex < 3; ++frameIndex)
        {
            const NpyRead read{file, 1, frameIndex};
            const auto first = samples.begin() + static_cast<ptrdiff_t>(frameIndex * frameBytes);
            const DisplayedFrame expected =
                ReferenceDisplay({.pixelType = row.pixelType,
                                  .width = 5,
                                  .height = 7,
                                  .bytes = {first, first + static_cast<ptrdiff_t>(frameBytes)},
                                  .fileType = FileType::Npy});
            EXPECT_TRUE(read.succeeded) << frameIndex;
            EXPECT_EQ(read.reader.displayPixels, expected.pixels) << frameIndex;
            EXPECT_EQ(read.lines, expected.lines) << frameIndex;
        }
        const NpyRead beyond{file, 1, 3};
        EXPECT_FALSE(beyond.succeeded);
        EXPECT_THAT(beyond.lines, ElementsAre(noSuchFrame));
    }
}

TEST(NpyReader, TakesFramesAsBlocksEvenWhereTheShapeCountsThemLast)
{
    // (2, 2, 3) of 16-bit samples: in the array itself the frames would alternate sample by sample.
    const auto file =
        NpyFile().Descr("<u2").Shape("(2, 2, 3)").Samples({0,  0, 51, 0, 102, 0, 255, 0, 255, 0, 102, 0,
                                                           51, 0, 0,  0, 1,   1, 1,   1, 1,   1, 1,   1});
    const std::vector<Bytes> pictures = {{0, 51, 102, 255}, {255, 102, 51, 0}, {0, 0, 0, 0}};
    for (uint32_t frameIndex = 0; frameIndex < 3; ++frameIndex)
    {
        const NpyRead read{file.Build(), 1, frameIndex};
        EXPECT_TRUE(read.succeeded) << frameIndex;
        EXPECT_EQ(read.reader.displayPixels, pictures[frameIndex]) << frameIndex;
        EXPECT_EQ(read.lines.size(), frameIndex == 2 ? 1U : 0U);
    }
    EXPECT_THAT(NpyRead(file.Build(), 1, 2).lines, ElementsAre(zeroRange));
}

TEST(NpyReader, FindsFrame9Of10BehindTheHeaderAndNineOthers)
{
    constexpr size_t framePixels = 256 * 256;
    const Bytes samples = VariedSamples(PixelType::UInt16, 10 * framePixels);
    const Bytes file =
        NpyFile().Descr("<u2").Shape("(10, 256, 256)").HeaderLength(118).Samples(samples).Build();

    const NpyRead last{file, 1, 9};
    EXPECT_TRUE(last.succeeded);
    EXPECT_THAT(last.reader, HasFacts({FileType::Npy, PixelType::UInt16, 256, 256, 10}));
    const DisplayedFrame expected =
        ReferenceDisplay({.pixelType = PixelType::UInt16,
                          .width = 256,
                          .height = 256,
                          .bytes = {samples.begin() + 9 * framePixels * 2, samples.end()}});
    EXPECT_EQ(last.reader.displayPixels, expected.pixels);
    EXPECT_EQ(last.lines, expected.lines);

    for (const uint32_t frameIndex : {10U, 11U, 0xFFFFFFFFU})
        ExpectRefusal<RawImageNpy>(file, {noSuchFrame}, frameIndex, testing::_, frameIndex);
}

TEST(NpyReader, FindsTheDataByTheStatedHeaderLengthAlone)
{
    // The text stays where it is; with a short length the data begin in its middle.
    const std::string dictionary = "{'descr': '|u1', 'shape': (1, 4), }";
    for (const uint16_t headerLength : {uint16_t{0}, uint16_t{1}, uint16_t{30}, uint16_t{118}, uint16_t{255},
                                        uint16_t{256}, uint16_t{257}, uint16_t{1000}, uint16_t{65535}})
    {
        Bytes file = NpyFile().Dictionary(dictionary).HeaderLength(headerLength).Samples(Bytes(300)).Build();
        const size_t dataOffset = size_t{10} + headerLength;
        const DisplayedFrame expected =
            ReferenceDisplay({.width = 4,
                              .height = 1,
                              .bytes = {file.begin() + static_cast<ptrdiff_t>(dataOffset), file.end()}});
        const NpyRead read{file};
        EXPECT_TRUE(read.succeeded) << headerLength;
        EXPECT_EQ(read.reader.displayPixels, expected.pixels) << headerLength;
        if (headerLength >= 118)
        {
            file[dataOffset + 2] = 255;
            EXPECT_THAT(NpyRead(file).reader.displayPixels, ElementsAre(0, 0, 255, 0)) << headerLength;
        }
    }
}

struct SizeRow
{
    const char* shape;
    const char* descr;
    uint32_t frameIndex;
    /// Data that just suffice.
    size_t dataBytes;
};

TEST(NpyReader, NeedsTheWholeFrameInTheFile)
{
    constexpr SizeRow rows[] = {
        {"(1, 1)", "|u1", 0, 1},     {"(2, 3)", "<u2", 0, 12},     {"(2, 3)", "<c16", 0, 96},
        {"(2, 3, 3)", "|u1", 0, 18}, {"(4, 2, 3)", "<f4", 0, 24},  {"(4, 2, 3)", "<f4", 1, 48},
        {"(4, 2, 3)", "<f4", 3, 96}, {"(3, 3, 5)", "<i4", 4, 180}, {"(4096, 1, 2)", "|u1", 4095, 8192},
    };
    for (const SizeRow& row : rows)
        for (const uint32_t mode : {0U, 1U})
        {
            const auto file = NpyFile().Descr(row.descr).Shape(row.shape);
            const NpyRead enough{NpyFile{file}.Samples(Bytes(row.dataBytes)).Build(), mode, row.frameIndex};
            EXPECT_TRUE(enough.succeeded) << row.shape;

            const NpyRead cut{NpyFile{file}.Samples(Bytes(row.dataBytes - 1)).Build(), mode, row.frameIndex};
            EXPECT_FALSE(cut.succeeded) << row.shape;
            EXPECT_THAT(cut.lines, ElementsAre(invalidDataSize)) << row.shape;
        }
}

TEST(NpyReader, NeedsTheDataStartInTheFile)
{
    const NpyRead read{NpyFile().HeaderLength(65535).Samples({}).Build(), 0};
    EXPECT_THAT(read.lines, ElementsAre(invalidDataSize));

    Bytes cut = NpyFile().HeaderLength(65535).Samples({7}).Build();
    ASSERT_EQ(cut.size(), 65546U);
    EXPECT_TRUE(NpyRead(cut).succeeded);
    cut.resize(256);
    EXPECT_THAT(NpyRead(cut).lines, ElementsAre(invalidDataSize));
}

TEST(NpyReader, TakesTheFrameSizeModulo32BitsAndThenCannotReadTheFrame)
{
    // 2^32 bytes are none; nothing is missing then but the frame itself.
    ExpectFactsWithoutFrame<RawImageNpy>(NpyFile().Descr("<f4").Shape("(32768, 32768)").Build(), 0,
                                         cannotReadImage);

    // 65535 x 65535 samples of two bytes are 262142 bytes less than 2^33, so the header asks for that much
    // less than 2^32.
    constexpr uint64_t needed = 256 + 4294705154;
    for (const uint64_t size : {needed - 1, needed})
    {
        const Bytes file = NpyFile().Descr("<u2").Shape("(65535, 65535)").Build();
        const SparseRead<RawImageNpy> read{size, file, 0, {}, 0};
        EXPECT_EQ(read.succeeded, size == needed) << size;
        EXPECT_EQ(read.lines, size == needed ? Lines{} : Lines{invalidDataSize}) << size;
    }
}

TEST(NpyReader, FindsFramesFarBehind4GiB)
{
    // Frame 4095 of 2 MiB each begins at 256 + 8587837440.
    constexpr uint64_t place = 256 + uint64_t{4095} * 2097152;
    const Bytes file = NpyFile().Descr("<u2").Shape("(4096, 1024, 1024)").Build();
    const Bytes samples = VariedSamples(PixelType::UInt16, 1024 * 1024);
    const DisplayedFrame expected =
        ReferenceDisplay({.pixelType = PixelType::UInt16, .width = 1024, .height = 1024, .bytes = samples});
    const SparseRead<RawImageNpy> read{place + 2097152, file, place, samples, 1, 4095};
    ASSERT_TRUE(read.succeeded);
    EXPECT_TRUE(read.reader.displayPixels == expected.pixels);

    const SparseRead<RawImageNpy> cut{place + 2097151, file, place, samples, 1, 4095};
    EXPECT_FALSE(cut.succeeded);
    EXPECT_THAT(cut.lines, ElementsAre(invalidDataSize));
}

} // namespace
