#include "support/DmReaderTest.h"
#include "support/FileFacts.h"
#include "support/display/FourSamples.h"
#include "support/display/ReferenceDisplay.h"
#include "support/display/VariedSamples.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string noThumbnail = "[Lumora] DM: No thumbnail image found";

struct DataTypeRow
{
    uint32_t dataType;
    uint32_t elementType;
    PixelType pixelType;
};

constexpr DataTypeRow shownTypes[] = {
    {1, DmType::int16, PixelType::Int16},    {2, DmType::float32, PixelType::Float32},
    {6, DmType::byte, PixelType::UInt8},     {7, DmType::int32, PixelType::Int32},
    {10, DmType::uint16, PixelType::UInt16}, {11, DmType::uint32, PixelType::UInt32},
    {23, DmType::int32, PixelType::RGBA32},
};

Lines Joined(Lines first, const Lines& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TYPED_TEST(DmReader, ShowsEveryTypeOfSamples)
{
    for (const DataTypeRow& row : shownTypes)
    {
        SCOPED_TRACE(row.dataType);
        // 10000 samples in each of two frames.
        const DmImage image{.dataType = row.dataType,
                            .width = 125,
                            .height = 80,
                            .depth = 2,
                            .elementType = row.elementType,
                            .elementCount = 20000,
                            .samples = VariedSamples(row.pixelType, 20000)};
        const bool isColour = row.pixelType == PixelType::RGBA32;
        const FileFacts facts = DmFacts<TypeParam>(row.pixelType, 125, 80, 3);
        const Bytes file = this->FileOf({SmallNumberedImage(1), image});
        for (const uint32_t i : {0U, 1U})
        {
            StoredFrame stored{.pixelType = row.pixelType, .width = 125, .height = 80};
            const size_t frameBytes = image.samples.size() / 2;
            const auto begin = image.samples.begin() + static_cast<ptrdiff_t>(i * frameBytes);
            stored.bytes.assign(begin, begin + static_cast<ptrdiff_t>(frameBytes));
            const DisplayedFrame expected = ReferenceDisplay(stored);
            ASSERT_TRUE(expected.shown);

            // The first image of the file is another one.
            const FileRead<TypeParam> read{file, 1, i + 1};
            EXPECT_TRUE(read.succeeded);
            EXPECT_THAT(read.reader, HasFacts(facts));
            EXPECT_EQ(read.reader.displayPixels.size(), isColour ? 30000U : 10000U);
            EXPECT_EQ(read.reader.displayPixels, expected.pixels);
            EXPECT_EQ(read.lines, expected.lines);

            const FileRead<TypeParam> header{file, 0, i + 1};
            EXPECT_TRUE(header.succeeded);
            EXPECT_THAT(header.reader, HasFacts(facts));
            EXPECT_THAT(header.reader.displayPixels, IsEmpty());
            EXPECT_THAT(header.lines, IsEmpty());
        }
    }
}

TYPED_TEST(DmReader, ShowsTheFirstStoredRowAtTheTopAndTakesSamplesAsLittleEndian)
{
    for (const DataTypeRow& row : shownTypes)
    {
        const FourSamples samples = FourSamplesOf(row.pixelType);
        DmImage image{.dataType = row.dataType,
                      .width = 2,
                      .height = 2,
                      .elementType = DmType::uint32,
                      .elementCount = 0x40000004,
                      .samples = samples.stored};
        image.samples.resize(16);
        const FileRead<TypeParam> read{this->FileOf({image})};
        EXPECT_TRUE(read.succeeded) << row.dataType;
        EXPECT_FALSE(read.reader.flipVertical) << row.dataType;
        EXPECT_EQ(read.reader.displayPixels, samples.picture) << row.dataType;
        EXPECT_EQ(read.lines, row.dataType == 23 ? Lines{} : Lines{noThumbnail}) << row.dataType;
    }
}

TYPED_TEST(DmReader, DoesNotFindImagesOfOtherTypesOfSamples)
{
    std::vector<uint32_t> others = {0x101, 0x10000 + 6, 0x0A000000, 0x80000002, 0xFFFFFFFF};
    for (uint32_t dataType = 0; dataType < 256; ++dataType)
        others.push_back(dataType);
    for (const DataTypeRow& row : shownTypes)
        std::erase(others, row.dataType);
    std::erase(others, 9U);
    for (const uint32_t dataType : others)
    {
        DmImage image = SmallNumberedImage(7);
        image.dataType = dataType;
        ExpectRefusal<TypeParam>(this->FileOf({image}), {this->Line("No images found")}, dataType);
    }
}

// Such images are found and counted all the same.
TYPED_TEST(DmReader, RefusesSignedBytes)
{
    const DmImage bytes{.dataType = 9,
                        .width = 125,
                        .height = 80,
                        .elementType = DmType::character,
                        .elementCount = 10000,
                        .samples = VariedSamples(PixelType::Int8, 10000)};
    const Bytes file = this->FileOf({bytes, SmallNumberedImage(7), bytes});
    const std::string unsupported = this->Line("Unsupported pixel type");
    for (const uint32_t i : {0U, 2U})
        ExpectRefusal<TypeParam>(file, i == 0 ? Lines{noThumbnail, unsupported} : Lines{unsupported}, i,
                                 HasFacts(DmFacts<TypeParam>(PixelType::Int8, 125, 80, 3)), i);
    for (const uint32_t mode : {0U, 1U})
    {
        const FileRead<TypeParam> other{file, mode, 1};
        EXPECT_TRUE(other.succeeded);
        EXPECT_EQ(other.reader.pixelType, PixelType::UInt16);
    }

    const FileRead<TypeParam> behindThumbnail{this->FileOf({Thumbnail(9), bytes})};
    EXPECT_FALSE(behindThumbnail.succeeded);
    EXPECT_THAT(behindThumbnail.lines,
                ElementsAre("[Lumora] DM: The embedded thumbnail will be ignored", unsupported));
}

struct SizeRow
{
    uint32_t width;
    uint32_t height;
    /// Lines behind the one about the thumbnail; none for a size that can be shown.
    Lines lines;
};

TYPED_TEST(DmReader, RefusesToShowAnImageOfAnImpossibleSize)
{
    constexpr uint32_t most = std::numeric_limits<uint32_t>::max();
    const Lines invalid = {invalidResolution};
    const Lines cannotRead = {cannotReadImage};
    const SizeRow rows[] = {
        {0, 1, invalid},
        {1, 0, invalid},
        {0, 0, invalid},
        {65535, 1, {}},
        {1, 65535, {}},
        {65536, 1, invalid},
        {1, 65536, invalid},
        {65536, 65536, invalid},
        {most, 1, invalid},
        {most, most, invalid},
        {65535, 65535, cannotRead},
    };
    DmImage image{.dataType = 6,
                  .elementType = DmType::byte,
                  .elementCount = 65535,
                  .samples = VariedSamples(PixelType::UInt8, 65535)};
    for (const SizeRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.width << " x " << row.height);
        image.width = row.width;
        image.height = row.height;
        const Bytes file = this->FileOf({image});

        const FileRead<TypeParam> header{file, 0};
        EXPECT_TRUE(header.succeeded);
        EXPECT_EQ(header.reader.width, row.width);
        EXPECT_EQ(header.reader.height, row.height);
        EXPECT_THAT(header.lines, ElementsAre(noThumbnail));

        const FileRead<TypeParam> read{file};
        EXPECT_EQ(read.succeeded, row.lines.empty());
        EXPECT_EQ(read.lines, Joined({noThumbnail}, row.lines));
        EXPECT_EQ(read.reader.displayPixels.size(), row.lines.empty() ? 65535U : 0U);
    }
}

TYPED_TEST(DmReader, SaysWhenTheDataOfAnImageReachBeyondTheFile)
{
    // The image claims to be larger than its array; what follows the array serves as samples until the file
    // ends.
    DmImage image = SmallNumberedImage(7);
    image.dataType = 6;
    image.height = 1;
    const Bytes samples = Bytes(8, 1);
    image.samples = samples;
    const Bytes file = this->FileOf({image});
    const auto data = std::search(file.begin(), file.end(), samples.begin(), samples.end());
    ASSERT_NE(data, file.end());
    const auto bytesToTheEnd = static_cast<uint32_t>(file.end() - data);
    for (const uint32_t width : {8U, bytesToTheEnd - 1, bytesToTheEnd, bytesToTheEnd + 1, 60000U})
    {
        image.width = width;
        const FileRead<TypeParam> read{this->FileOf({image})};
        ASSERT_EQ(read.stream.bytes.size(), file.size());
        EXPECT_EQ(read.succeeded, width <= bytesToTheEnd) << width;
        EXPECT_EQ(read.reader.width, width);
        if (width > bytesToTheEnd)
        {
            EXPECT_THAT(read.lines, ElementsAre(noThumbnail, cannotReadImage));
        }
    }
}

} // namespace
