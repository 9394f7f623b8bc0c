#include "formats/RawImageSer.h"
#include "support/FileFacts.h"
#include "support/display/FourSamples.h"
#include "support/display/FrameReader.h"
#include "support/display/VariedSamples.h"
#include "support/files/SerFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using SerRead = FileRead<RawImageSer>;

namespace {

struct TypeRow
{
    uint16_t dataType;
    PixelType pixelType;
};

constexpr TypeRow dataTypes[] = {
    {1, PixelType::UInt8},     {2, PixelType::UInt16},      {3, PixelType::UInt32},  {4, PixelType::Int8},
    {5, PixelType::Int16},     {6, PixelType::Int32},       {7, PixelType::Float32}, {8, PixelType::Double64},
    {9, PixelType::Complex64}, {10, PixelType::Complex128},
};

TEST(SerReader, ShowsEveryDataTypeWithTheLastStoredRowAtTheTop)
{
    for (const TypeRow& row : dataTypes)
    {
        const FourSamples samples = FourSamplesOf(row.pixelType);
        const Bytes& picture = samples.picture;
        const SerRead read{SerFile().Element({row.dataType, 2, 2, samples.stored}).Build()};
        EXPECT_TRUE(read.succeeded) << row.dataType;
        EXPECT_THAT(read.reader, HasFacts({FileType::Ser, row.pixelType, 2, 2, 1, true, L"Pellox"}));
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(picture[2], picture[3], picture[0], picture[1]))
            << row.dataType;
        EXPECT_THAT(read.lines, IsEmpty()) << row.dataType;
    }
}

TEST(SerReader, ShowsEveryDataTypeAsTheReferenceDoes)
{
    constexpr uint32_t sizes[][2] = {{7, 5}, {1, 1}, {1, 9}, {9, 1}, {64, 48}};
    for (const TypeRow& row : dataTypes)
        for (const auto& [width, height] : sizes)
        {
            StoredFrame frame = {.pixelType = row.pixelType,
                                 .width = width,
                                 .height = height,
                                 .bytes = VariedSamples(row.pixelType, size_t{width} * height),
                                 .flipVertical = true,
                                 .fileType = FileType::Ser};
            const DisplayedFrame expected = ReferenceDisplay(frame);
            const auto file = SerFile().Version(0x0220).Element({row.dataType, width, height, frame.bytes});
            const SerRead read{file.Build()};

            EXPECT_TRUE(read.succeeded) << row.dataType << ", " << width << " x " << height;
            EXPECT_EQ(read.reader.displayPixels, expected.pixels)
                << row.dataType << ", " << width << " x " << height;
            EXPECT_EQ(read.lines, expected.lines) << row.dataType << ", " << width << " x " << height;
        }
}

TEST(SerReader, NeedsEverySampleOnlyToShowThem)
{
    for (const TypeRow& row : dataTypes)
    {
        Bytes cut = FourSamplesOf(row.pixelType).stored;
        cut.pop_back();
        ExpectFactsWithoutFrame<RawImageSer>(
            SerFile().Element({row.dataType, 2, 2, cut}).Build(), 0, cannotReadImage,
            HasFacts({FileType::Ser, row.pixelType, 2, 2, 1, true, L"Pellox"}));
    }
}

TEST(SerReader, ShowsElementsOfDifferentTypesAndSizes)
{
    const Bytes file = SerFile()
                           .Version(0x0220)
                           .Element(3, 1, {0, 5, 255})
                           .Element({5, 1, 2, Stored<int16_t>({-200, 55})})
                           .Element({7, 2, 1, Stored<float>({1, 0})})
                           .Build();
    EXPECT_THAT(SerRead(file, 1, 0).reader.displayPixels, ElementsAre(0, 5, 255));
    EXPECT_THAT(SerRead(file, 1, 1).reader.displayPixels, ElementsAre(255, 0));
    EXPECT_THAT(SerRead(file, 1, 2).reader.displayPixels, ElementsAre(255, 0));

    const auto factsOf = [](PixelType pixelType, uint32_t width, uint32_t height) {
        return FileFacts{FileType::Ser, pixelType, width, height, 3, true, L"Pellox"};
    };
    EXPECT_THAT(SerRead(file, 0, 0).reader, HasFacts(factsOf(PixelType::UInt8, 3, 1)));
    EXPECT_THAT(SerRead(file, 0, 1).reader, HasFacts(factsOf(PixelType::Int16, 1, 2)));
    EXPECT_THAT(SerRead(file, 0, 2).reader, HasFacts(factsOf(PixelType::Float32, 2, 1)));
}

/// Five pictures of 2 MiB each.
Bytes LargeSeries()
{
    SerFile file;
    for (int i = 0; i < 5; ++i)
        file.Element(2048, 1024, Bytes(2048 * 1024));
    return file.Build();
}

TEST(SerReader, ReadsNoSamplesForTheFactsOfASeries)
{
    constexpr uint64_t windowBytes = 0x400000;
    const Bytes file = LargeSeries();

    // The second element begins in the first window, the last needs a window of its own.
    const SerRead close{file, 0, 1};
    EXPECT_TRUE(close.succeeded);
    EXPECT_EQ(close.stream.readCalls, 1U);
    EXPECT_EQ(close.stream.bytesRead, windowBytes);
    const SerRead distant{file, 0, 4};
    EXPECT_TRUE(distant.succeeded);
    EXPECT_EQ(distant.stream.readCalls, 2U);
    EXPECT_LE(distant.stream.bytesRead, 2 * windowBytes);
    EXPECT_EQ(distant.reader.width, 2048U);
    EXPECT_EQ(distant.reader.height, 1024U);
}

TEST(SerReader, ReadsTheSamplesOfOneElementInOneGo)
{
    const SerRead read{LargeSeries(), 1, 4};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.displayPixels.size(), 2048U * 1024U);
    EXPECT_EQ(read.stream.readCalls, 3U);
}

/// A million and a half frames that share one element, with an array of 6000000 bytes.
Bytes LongSeries()
{
    constexpr uint32_t count = 1500000;
    const Bytes element = SerElement{1, 3, 1, {0, 99, 255}}.Build();
    const uint32_t place = 26 + 4 * count;
    ByteWriter file;
    file.Put(SerFile().TotalCount(count).ValidCount(count).Build());
    for (uint32_t i = 0; i < count; ++i)
        file.Put(place);
    file.Put(element);
    return std::move(file.bytes);
}

TEST(SerReader, WalksALongArrayWindowByWindow)
{
    Bytes file = LongSeries();
    const SerRead last{file, 1, 1499999};
    EXPECT_TRUE(last.succeeded);
    EXPECT_EQ(last.reader.frameCount, 1500000U);
    EXPECT_THAT(last.reader.displayPixels, ElementsAre(0, 99, 255));
    // Two windows, the second up to the end of the file, and the samples.
    EXPECT_EQ(last.stream.readCalls, 3U);
    EXPECT_EQ(last.stream.bytesRead, file.size() + 2 + 3);

    const SerRead beyond{file, 0, 1500000};
    EXPECT_FALSE(beyond.succeeded);
    EXPECT_THAT(beyond.lines, ElementsAre("[Lumora] SER: Frame index is out of range"));

    // The last entry's last byte.
    file.at(26 + 6000000 - 1) = 0x7F;
    const SerRead damaged{file, 1, 0};
    EXPECT_FALSE(damaged.succeeded);
    EXPECT_THAT(damaged.lines, IsEmpty());
}

} // namespace
