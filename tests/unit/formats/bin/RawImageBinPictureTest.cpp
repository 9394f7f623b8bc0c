#include "formats/bin/RawImageBin.h"
#include "support/display/FrameReader.h"
#include "support/display/VariedSamples.h"
#include "support/files/BinFile.h"
#include "support/streams/DamagedFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::IsEmpty;

using BinRead = FileRead<RawImageBin>;

namespace {

struct TypeRow
{
    uint16_t typeCode;
    PixelType pixelType;
    /// Samples of a frame of 2 x 2 pixels.
    Bytes samples;
    Bytes picture;
};

// Numbers are chosen to span exactly 255 steps, so that the picture is the distance from the smallest one,
// or, for fractions, to span 0 to 1: quantised to 65535 steps and then divided by 257.
const TypeRow typeCodes[] = {
    {1, PixelType::UInt8, {0, 100, 200, 255}, {0, 100, 200, 255}},
    {2, PixelType::UInt16, Stored<uint16_t>({65000, 65255, 65001, 65128}), {0, 255, 1, 128}},
    {3, PixelType::UInt32, Stored<uint32_t>({70000, 70255, 70001, 70128}), {0, 255, 1, 128}},
    {4, PixelType::Int8, {0x80, 0x00, 0x00, 0x7F}, {0, 128, 128, 255}},
    {5, PixelType::Int16, Stored<int16_t>({-100, -99, 55, 155}), {0, 1, 155, 255}},
    {6, PixelType::Int32, Stored<int32_t>({-100000, -99999, -99845, -99745}), {0, 1, 155, 255}},
    {7, PixelType::Float32, Stored<float>({0, 1, 0.5F, 0.25F}), {0, 255, 127, 63}},
    {8, PixelType::Double64, Stored<double>({0, 1, 0.5, 0.25}), {0, 255, 127, 63}},
};

TEST(BinReader, ShowsEveryTypeWithTheFirstStoredRowAtTheTop)
{
    for (const TypeRow& row : typeCodes)
    {
        const auto bin = BinFile().Size(2, 2).Samples(row.typeCode, row.samples);
        const BinRead shortHeader{bin.Build()};
        const BinRead told{BinFile{bin}.HeaderLength(14).Build()};
        EXPECT_EQ(shortHeader.reader.fileType, FileType::Bin) << row.typeCode;
        EXPECT_EQ(told.reader.fileType, FileType::BinWithDataOffset) << row.typeCode;
        for (const BinRead* read : {&shortHeader, &told})
        {
            EXPECT_TRUE(read->succeeded) << row.typeCode;
            EXPECT_EQ(read->reader.pixelType, row.pixelType) << row.typeCode;
            EXPECT_EQ(read->reader.displayPixels, row.picture) << row.typeCode;
            EXPECT_THAT(read->lines, IsEmpty()) << row.typeCode;
        }
    }
}

TEST(BinReader, ShowsEveryTypeAsTheReferenceDoes)
{
    constexpr uint32_t sizes[][2] = {{7, 5}, {1, 9}, {9, 1}, {64, 48}};
    for (const TypeRow& row : typeCodes)
        for (const auto& [width, height] : sizes)
        {
            const StoredFrame frame = {.pixelType = row.pixelType,
                                       .width = width,
                                       .height = height,
                                       .bytes = VariedSamples(row.pixelType, size_t{width} * height),
                                       .fileType = FileType::Bin};
            const DisplayedFrame expected = ReferenceDisplay(frame);
            const auto bin = BinFile().Size(width, height).Samples(row.typeCode, frame.bytes);
            for (const Bytes& file : {bin.Build(), BinFile{bin}.HeaderLength(33).Build()})
            {
                const BinRead read{file};
                EXPECT_TRUE(read.succeeded) << row.typeCode << ", " << width << " x " << height;
                EXPECT_EQ(read.reader.displayPixels, expected.pixels)
                    << row.typeCode << ", " << width << " x " << height;
                EXPECT_EQ(read.lines, expected.lines) << row.typeCode << ", " << width << " x " << height;
            }
        }
}

TEST(DamagedBinFile, OpensOnlyAtItsFullLength)
{
    const std::string wrongFileSize =
        "[Lumora] BIN: File size does not match with the image properties in the header";
    // 64 bytes behind either header. No first bytes of theirs add up to another length.
    const auto bin = BinFile().Size(8, 4).Samples(2, Bytes(64, 0x55));
    for (const Bytes& whole : {bin.Build(), BinFile{bin}.HeaderLength(20).Build()})
        for (size_t length = 0; length <= whole.size(); ++length)
            for (const uint32_t mode : {0U, 1U})
            {
                const Bytes file = FirstBytes(whole, length);
                // With 74 bytes the longer file has what the shorter header promises.
                const bool opens = length == whole.size() || length == 74;
                const BinRead read{file, mode};
                EXPECT_EQ(read.succeeded, opens) << length;
                if (!opens)
                {
                    EXPECT_EQ(read.lines, length < 14 ? Lines{} : Lines{wrongFileSize}) << length;
                }
                ExpectSaneOutcome(file, 0, length);
            }
}

TEST(DamagedBinFile, TellsOfItsTypeAndOfTheIndexAsSoonAsItCan)
{
    const Bytes otherType = BinFile().Size(4, 4).Samples(9, Bytes(16)).Build();
    const Bytes known = BinFile().Size(4, 4).Samples(1, Bytes(16)).Build();
    for (size_t length = 0; length <= known.size(); ++length)
    {
        const BinRead type{FirstBytes(otherType, length)};
        EXPECT_FALSE(type.succeeded) << length;
        EXPECT_EQ(type.lines, length < 2 ? Lines{} : Lines{"[Lumora] BIN: Unsupported pixel type"}) << length;
        const BinRead index{FirstBytes(known, length), 1, 1};
        EXPECT_FALSE(index.succeeded) << length;
        EXPECT_EQ(index.lines, length < 10 ? Lines{} : Lines{"[Lumora] BIN: Invalid frame index"}) << length;
    }
}

TEST(DamagedBinFile, IsReadOrNotWithAnyByteChanged)
{
    const auto bin = BinFile().Size(8, 8).Samples(1, Bytes(64, 0x55));
    for (const Bytes& whole : {bin.Build(), BinFile{bin}.HeaderLength(20).Build()})
        ForEveryChangedByte(whole, 20, [](const Bytes& file, size_t place) {
            ExpectSaneRead<RawImageBin>(file, 0, place);
            ExpectSaneOutcome(file, 0, place);
        });
}

} // namespace
