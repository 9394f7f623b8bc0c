#include "formats/bin/RawImageBin.h"
#include "support/display/FourSamples.h"
#include "support/display/ReferenceDisplay.h"
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
};

constexpr TypeRow typeCodes[] = {
    {1, PixelType::UInt8}, {2, PixelType::UInt16}, {3, PixelType::UInt32},  {4, PixelType::Int8},
    {5, PixelType::Int16}, {6, PixelType::Int32},  {7, PixelType::Float32}, {8, PixelType::Double64},
};

TEST(BinReader, ShowsEveryTypeWithTheFirstStoredRowAtTheTop)
{
    for (const TypeRow& row : typeCodes)
    {
        const FourSamples samples = FourSamplesOf(row.pixelType);
        const auto bin = BinFile().Size(2, 2).Samples(row.typeCode, samples.stored);
        const BinRead shortHeader{bin.Build()};
        const BinRead told{BinFile{bin}.HeaderLength(14).Build()};
        EXPECT_EQ(shortHeader.reader.fileType, FileType::Bin) << row.typeCode;
        EXPECT_EQ(told.reader.fileType, FileType::BinWithDataOffset) << row.typeCode;
        for (const BinRead* read : {&shortHeader, &told})
        {
            EXPECT_TRUE(read->succeeded) << row.typeCode;
            EXPECT_EQ(read->reader.pixelType, row.pixelType) << row.typeCode;
            EXPECT_EQ(read->reader.displayPixels, samples.picture) << row.typeCode;
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
