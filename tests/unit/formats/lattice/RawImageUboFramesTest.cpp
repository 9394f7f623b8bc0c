#include "formats/lattice/RawImageUbo.h"
#include "support/display/FourSamples.h"
#include "support/display/ReferenceDisplay.h"
#include "support/display/VariedSamples.h"
#include "support/files/LatticeFile.h"
#include "support/streams/ReaderExpectations.h"
#include "support/streams/SparseRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using LatticeRead = FileRead<RawImageUbo>;

namespace {

const std::string noSuchFrame = "[Lumora] UBO: Frame index is out of range";

struct TypeRow
{
    const char* word;
    PixelType pixelType;
};

constexpr TypeRow types[] = {
    {"byte", PixelType::UInt8}, {"ushort", PixelType::UInt16}, {"short", PixelType::Int16},
    {"int", PixelType::Int32},  {"float", PixelType::Float32}, {"double", PixelType::Double64},
};

TEST(LatticeReader, ShowsTheFirstStoredRowAtTheTop)
{
    for (const TypeRow& row : types)
        for (const char* magic : {"# Vorna BINARY-BIG", "# PelixMesh ASCII"})
        {
            const FourSamples samples = FourSamplesOf(row.pixelType);
            const LatticeRead read{
                LatticeFile().Magic(magic).Size(2, 2, 1).Type(row.word).Samples(samples.stored).Build()};
            EXPECT_TRUE(read.succeeded) << row.word;
            EXPECT_EQ(read.reader.byteOrder, ByteOrder::LittleEndian) << row.word;
            EXPECT_EQ(read.reader.displayPixels, samples.picture) << row.word;
            EXPECT_THAT(read.lines, IsEmpty()) << row.word;
        }
}

TEST(LatticeReader, OffersTheMiddleSliceOfThreeOrMoreBeforeAllSlices)
{
    // Which slice each frame is, for one to seven slices.
    const std::vector<std::vector<size_t>> slicesOfFrames = {
        {0},
        {0, 1},
        {1, 0, 1, 2},
        {2, 0, 1, 2, 3},
        {2, 0, 1, 2, 3, 4},
        {3, 0, 1, 2, 3, 4, 5},
        {3, 0, 1, 2, 3, 4, 5, 6},
    };
    for (const std::vector<size_t>& slices : slicesOfFrames)
        for (const TypeRow& row : types)
        {
            const size_t sliceCount = slices.size() - (slices.size() > 2 ? 1 : 0);
            SCOPED_TRACE(testing::Message() << sliceCount << " slices of " << row.word);
            const size_t sliceBytes = size_t{5} * 7 * BytesPerPixel(row.pixelType);
            const Bytes samples = VariedSamples(row.pixelType, sliceCount * 5 * 7);
            const Bytes file = LatticeFile()
                                   .Size(5, 7, static_cast<uint32_t>(sliceCount))
                                   .Type(row.word)
                                   .Samples(samples)
                                   .Build();
            for (uint32_t frameIndex = 0; frameIndex < slices.size(); ++frameIndex)
            {
                const auto first = samples.begin() + static_cast<ptrdiff_t>(slices[frameIndex] * sliceBytes);
                const DisplayedFrame expected =
                    ReferenceDisplay({.pixelType = row.pixelType,
                                      .width = 5,
                                      .height = 7,
                                      .bytes = {first, first + static_cast<ptrdiff_t>(sliceBytes)}});
                const LatticeRead read{file, 1, frameIndex};
                EXPECT_TRUE(read.succeeded) << frameIndex;
                EXPECT_EQ(read.reader.frameCount, slices.size()) << frameIndex;
                EXPECT_EQ(read.reader.displayPixels, expected.pixels) << frameIndex;
                EXPECT_EQ(read.lines, expected.lines) << frameIndex;
            }
            for (const uint32_t frameIndex : {static_cast<uint32_t>(slices.size()), 0xFFFFFFFFU})
                ExpectRefusal<RawImageUbo>(file, {noSuchFrame}, frameIndex, testing::_, frameIndex);
        }
}

TEST(LatticeReader, TakesTheLineFeedOfATwoCharacterLineEndForTheFirstSample)
{
    const LatticeRead read{LatticeFile().LineEnd("\r\n").Size(2, 2, 1).Samples({100, 0, 255, 7}).Build()};
    EXPECT_TRUE(read.succeeded);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre('\n', 100, 0, 255));
}

TEST(LatticeReader, ShowsTheFilesFirstBytesWhenItDoesNotSayWhereTheDataAre)
{
    // The first slice is the text "# Vorna ", the second "1.0", the line's end and "defi".
    for (const auto& file : {LatticeFile().DataMark(""), LatticeFile().Announcement(""),
                             LatticeFile().DataMark("@2"), LatticeFile().Announcement("# No data follow")})
    {
        const Bytes bytes = LatticeFile{file}.Size(4, 2, 2).Samples({1, 2, 3, 4, 5, 6, 7, 8}).Build();
        for (uint32_t frameIndex = 0; frameIndex < 2; ++frameIndex)
        {
            const auto first = bytes.begin() + 8 * static_cast<ptrdiff_t>(frameIndex);
            const LatticeRead read{bytes, 1, frameIndex};
            EXPECT_TRUE(read.succeeded);
            EXPECT_EQ(read.reader.displayPixels,
                      ReferenceDisplay({.width = 4, .height = 2, .bytes = {first, first + 8}}).pixels);
        }
    }
}

struct LengthRow
{
    uint32_t z;
    uint32_t frameIndex;
    /// Data that just suffice for the frame, where a slice has 12 bytes.
    size_t dataBytes;
};

TEST(LatticeReader, NeedsTheWholeSliceInTheFile)
{
    constexpr LengthRow rows[] = {
        {1, 0, 12}, {2, 0, 12}, {2, 1, 24},    {3, 0, 24},          {3, 1, 12},
        {3, 2, 24}, {3, 3, 36}, {1000, 1, 12}, {1000, 0, 12 * 501}, {1000, 1000, 12000},
    };
    for (const LengthRow& row : rows)
    {
        const auto file = LatticeFile().Size(3, 2, row.z).Type("short");
        const Bytes enough = LatticeFile{file}.Samples(Bytes(row.dataBytes)).Build();
        EXPECT_TRUE(LatticeRead(enough, 1, row.frameIndex).succeeded) << row.z << ", " << row.frameIndex;

        const Bytes cut = LatticeFile{file}.Samples(Bytes(row.dataBytes - 1)).Build();
        SCOPED_TRACE(testing::Message() << row.z << ", " << row.frameIndex);
        ExpectFactsWithoutFrame<RawImageUbo>(cut, row.frameIndex, cannotReadImage);
    }
}

struct CountRow
{
    uint32_t z;
    uint32_t frameCount;
};

TEST(LatticeReader, CountsSlicesWithoutATableOfThem)
{
    constexpr CountRow rows[] = {
        {1, 1},
        {2, 2},
        {3, 4},
        {0x7FFFFFFF, 0x80000000},
        {0xFFFFFFFE, 0xFFFFFFFF},
        // One more than a count can be.
        {0xFFFFFFFF, 0xFFFFFFFF},
    };
    for (const CountRow& row : rows)
    {
        const Bytes file = LatticeFile().Size(2, 2, row.z).Samples({0, 64, 128, 255}).Build();
        for (const uint32_t frameIndex : {0U, row.frameCount - 1})
        {
            const LatticeRead header{file, 0, frameIndex};
            EXPECT_TRUE(header.succeeded) << row.z;
            EXPECT_EQ(header.reader.frameCount, row.frameCount) << row.z;
        }
        const LatticeRead beyond{file, 0, row.frameCount};
        EXPECT_FALSE(beyond.succeeded) << row.z;
        EXPECT_THAT(beyond.lines, ElementsAre(noSuchFrame)) << row.z;

        // The first slice is there, the middle one of very many is not.
        const LatticeRead first{file, 1, row.z > 2 ? 1U : 0U};
        EXPECT_THAT(first.reader.displayPixels, ElementsAre(0, 64, 128, 255)) << row.z;
        if (row.z > 2)
        {
            EXPECT_THAT(LatticeRead(file, 1, 0).lines, ElementsAre(cannotReadImage)) << row.z;
        }
    }
}

struct FarRow
{
    uint32_t x;
    uint32_t y;
    uint32_t z;
    const char* word;
    uint32_t frameIndex;
    /// Where the slice begins, seen from the first one.
    uint64_t place;
};

TEST(LatticeReader, FindsSlicesFarBehind4GiB)
{
    constexpr FarRow rows[] = {
        // The middle one of 2^32 - 1: 2147483647 x 4 bytes.
        {2, 2, 0xFFFFFFFF, "byte", 0, 8589934588},
        // The last that can be asked for is the last but one: 4294967293 x 4 bytes.
        {2, 2, 0xFFFFFFFF, "byte", 0xFFFFFFFE, 17179869172},
        // Slices of 2 MiB: 2999 x 2097152.
        {512, 512, 3000, "double", 3000, 6289358848},
    };
    for (const FarRow& row : rows)
    {
        const PixelType type = row.word == std::string{"byte"} ? PixelType::UInt8 : PixelType::Double64;
        const Bytes file = LatticeFile().Size(row.x, row.y, row.z).Type(row.word).Build();
        const Bytes samples = VariedSamples(type, size_t{row.x} * row.y);
        const uint64_t place = file.size() + row.place;
        const SparseRead<RawImageUbo> read{place + samples.size(), file, place, samples, 1, row.frameIndex};
        ASSERT_TRUE(read.succeeded) << row.z;
        const DisplayedFrame expected =
            ReferenceDisplay({.pixelType = type, .width = row.x, .height = row.y, .bytes = samples});
        EXPECT_TRUE(read.reader.displayPixels == expected.pixels) << row.z;
        EXPECT_EQ(read.lines, expected.lines) << row.z;
    }
}

TEST(LatticeReader, CannotReadSlicesOf4GiBOrMore)
{
    // 32768 x 16384 doubles are 2^32 bytes: none, if the size were kept in 32 bits.
    for (const uint32_t rows : {16384U, 65535U})
    {
        const Bytes file = LatticeFile().Size(32768, rows, 0xFFFFFFFF).Type("double").Build();
        for (const uint32_t frameIndex : {0U, 1U, 0xFFFFFFFEU})
            ExpectFactsWithoutFrame<RawImageUbo>(file, frameIndex, cannotReadImage);
    }
}

} // namespace
