#include "support/DmReaderTest.h"
#include "support/streams/ReaderExpectations.h"
#include "support/streams/SparseRead.h"

#include <gmock/gmock.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;

namespace {

const std::string thumbnailIgnored = "[Lumora] DM: The embedded thumbnail will be ignored";
const std::string noThumbnail = "[Lumora] DM: No thumbnail image found";
const std::string thumbnailNotFirst = "[Lumora] DM: The thumbnail image is not the first image in the file";

DmImage FloatImage()
{
    DmImage image = SmallNumberedImage(0);
    image.dataType = 2;
    image.width = 2;
    image.samples = {0, 0, 0, 0, 0, 0, 0x80, 0x3F};
    return image;
}

DmImage Stack(DmImage image, uint32_t depth)
{
    image.depth = depth;
    return image;
}

struct FrameRow
{
    PixelType pixelType;
    Bytes picture;
};

struct ChoiceRow
{
    const char* what;
    std::vector<DmImage> images;
    /// Line that comes with the first frame.
    Lines lines;
    std::vector<FrameRow> frames;
};

TYPED_TEST(DmReader, SetsAsideAThumbnailThatIsTheFirstOfSeveralImages)
{
    constexpr auto uint16 = PixelType::UInt16;
    constexpr auto colour = PixelType::RGBA32;
    const DmImage one = SmallNumberedImage(1);
    const DmImage two = SmallNumberedImage(2);
    const ChoiceRow rows[] = {
        {"an image", {one}, {noThumbnail}, {{uint16, {0, 1, 255}}}},
        {"two images", {one, two}, {noThumbnail}, {{uint16, {0, 1, 255}}, {uint16, {0, 2, 255}}}},
        {"a thumbnail and an image", {Thumbnail(9), one}, {thumbnailIgnored}, {{uint16, {0, 1, 255}}}},
        {"a thumbnail and two images",
         {Thumbnail(9), one, two},
         {thumbnailIgnored},
         {{uint16, {0, 1, 255}}, {uint16, {0, 2, 255}}}},
        {"a thumbnail alone", {Thumbnail(9)}, {}, {{colour, {9, 2, 3, 4, 5, 6}}}},
        {"a thumbnail and an image in colour",
         {Thumbnail(9), Thumbnail(8)},
         {thumbnailIgnored},
         {{colour, {8, 2, 3, 4, 5, 6}}}},
        {"a thumbnail and two images in colour",
         {Thumbnail(9), Thumbnail(8), Thumbnail(7)},
         {thumbnailIgnored},
         {{colour, {8, 2, 3, 4, 5, 6}}, {colour, {7, 2, 3, 4, 5, 6}}}},
        {"a thumbnail between",
         {one, Thumbnail(9), two},
         {thumbnailNotFirst},
         {{uint16, {0, 1, 255}}, {colour, {9, 2, 3, 4, 5, 6}}, {uint16, {0, 2, 255}}}},
        {"a thumbnail at the end",
         {FloatImage(), Thumbnail(9)},
         {thumbnailNotFirst},
         {{PixelType::Float32, {0, 255}}, {colour, {9, 2, 3, 4, 5, 6}}}},
        {"a thumbnail that claims several frames, of which the first is set aside",
         {Stack(Thumbnail(9), 2), one},
         {thumbnailIgnored},
         // The second lies behind the first: the tag of its type of samples.
         {{colour, {0x15, 0, 8, 'a', 't', 'a'}}, {uint16, {0, 1, 255}}}},
    };
    for (const ChoiceRow& row : rows)
    {
        SCOPED_TRACE(row.what);
        DmTags list = this->Tags();
        for (const DmImage& image : row.images)
            list.Image(image);
        const Bytes file = this->File(list).Build();
        const auto frameCount = static_cast<uint32_t>(row.frames.size());
        for (uint32_t i = 0; i < frameCount; ++i)
            for (const uint32_t mode : {0U, 1U})
            {
                const FileRead<TypeParam> read{file, mode, i};
                EXPECT_TRUE(read.succeeded) << i;
                EXPECT_EQ(read.lines, i == 0 ? row.lines : Lines{}) << i;
                EXPECT_EQ(read.reader.frameCount, frameCount) << i;
                EXPECT_EQ(read.reader.pixelType, row.frames[i].pixelType) << i;
                EXPECT_EQ(read.reader.displayPixels, mode == 0 ? Bytes{} : row.frames[i].picture) << i;
            }
        for (const uint32_t i : {frameCount, frameCount + 1, 0x80000000U, 0xFFFFFFFFU})
            ExpectRefusal<TypeParam>(file, {this->Line("No images found")}, i, HasFacts(DmFacts<TypeParam>()),
                                     i);
    }
}

TYPED_TEST(DmReader, ShowsEveryFrameOfAStack)
{
    const Bytes file = this->FileOf({Thumbnail(9), Stack(NumberedImage(50), 10)});
    for (uint8_t i = 0; i < 10; ++i)
    {
        const FileRead<TypeParam> read{file, 1, i};
        EXPECT_TRUE(read.succeeded) << +i;
        EXPECT_THAT(read.reader, HasFacts(DmFacts<TypeParam>(PixelType::UInt16, 3, 1, 10))) << +i;
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 50 + i, 255));
        EXPECT_EQ(read.lines, i == 0 ? Lines{thumbnailIgnored} : Lines{}) << +i;
    }
    const FileRead<TypeParam> beyond{file, 1, 10};
    EXPECT_FALSE(beyond.succeeded);
    EXPECT_THAT(beyond.lines, ElementsAre(this->Line("No images found")));
}

TYPED_TEST(DmReader, CountsTheFramesOfSeveralStacksOn)
{
    const Bytes file =
        this->FileOf({Stack(NumberedImage(50), 3), Stack(NumberedImage(90), 0), Stack(NumberedImage(70), 2)});
    constexpr uint8_t numbers[] = {50, 51, 52, 70, 71};
    for (uint32_t i = 0; i < 5; ++i)
    {
        const FileRead<TypeParam> read{file, 1, i};
        EXPECT_TRUE(read.succeeded) << i;
        EXPECT_EQ(read.reader.frameCount, 5U) << i;
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, numbers[i], 255));
    }
    EXPECT_FALSE(FileRead<TypeParam>(file, 0, 5).succeeded);
}

TYPED_TEST(DmReader, SaysWhenAFrameIsNotInTheStream)
{
    // Frames of 6 bytes in a file of little more than 20000.
    const Bytes file = this->FileOf({Stack(NumberedImage(50), 0xFFFFFFFF)});
    for (const uint32_t i : {4000U, 100000U, 0x10000000U})
        ExpectFactsWithoutFrame<TypeParam>(file, i, cannotReadImage,
                                           HasFacts(DmFacts<TypeParam>(PixelType::UInt16, 3, 1, 0xFFFFFFFF)));
}

// Both the frame's size and its distance from the first frame have 32 bits, so the frames of a large stack
// come round to its start again.
TYPED_TEST(DmReader, StepsFromFrameToFrameIn32Bits)
{
    struct Row
    {
        uint32_t dataType;
        uint32_t width;
        uint32_t height;
        uint32_t frameIndex;
        /// Low 32 bits of frame index * bytes per pixel * width * height.
        uint32_t distance;
    };
    constexpr Row rows[] = {
        {6, 100, 1, 42949672, 0xFFFFFFA0}, // 2^32 - 96
        {6, 100, 1, 42949673, 4},          // 2^32 + 4
        {6, 100, 1, 42949674, 104},
        {10, 50, 1, 42949674, 104},
        {11, 5, 5, 42949674, 104},
        {6, 64, 64, 0x00100000, 0}, // 2^12 * 2^20
        {6, 64, 64, 0x00300001, 0x1000},
        {1, 50, 50, 0xFFFFFFFE, 0xFFFFD8F0}, // 2^32 - 2 * 5000
        {6, 100, 10, 0xFFFFFFFE, 0xFFFFF830},
        {6, 3, 1, 0xFFFFFFFE, 0xFFFFFFFA},
        {6, 3, 1, 0x55555556, 2}, // 3 * 0x55555556 is 2^32 + 2
    };
    Bytes samples(20000);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<uint8_t>(i % 251);
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.frameIndex);
        const DmImage image{.dataType = row.dataType,
                            .width = row.width,
                            .height = row.height,
                            .depth = 0xFFFFFFFF,
                            .elementType = DmType::byte,
                            .elementCount = 20000,
                            .samples = samples};
        const Bytes file = this->FileOf({image});
        const FileRead<TypeParam> header{file, 0, row.frameIndex};
        EXPECT_TRUE(header.succeeded);
        EXPECT_EQ(header.reader.frameCount, 0xFFFFFFFFU);

        const FileRead<TypeParam> read{file, 1, row.frameIndex};
        EXPECT_EQ(read.succeeded, row.distance < 20000);
        if (row.distance >= 20000)
        {
            EXPECT_THAT(read.lines, ElementsAre(cannotReadImage));
            continue;
        }
        // The same picture as that of an image whose data begin there.
        DmImage rest = image;
        rest.depth.reset();
        rest.samples.erase(rest.samples.begin(), rest.samples.begin() + row.distance);
        rest.samples.resize(20000);
        const FileRead<TypeParam> expected{this->FileOf({rest})};
        EXPECT_TRUE(expected.succeeded);
        EXPECT_EQ(read.reader.displayPixels, expected.reader.displayPixels);
    }
}

TYPED_TEST(DmReader, CountsUpTo32BitsOfFrames)
{
    const DmImage one = Stack(SmallNumberedImage(1), 0xFFFFFFFF);
    // One more than fits, of which the thumbnail is set aside.
    const Bytes file = this->FileOf({Thumbnail(9), one});
    for (const uint32_t i : {0U, 1U, 0xFFFFFFFEU})
    {
        const FileRead<TypeParam> read{file, 0, i};
        EXPECT_TRUE(read.succeeded) << i;
        EXPECT_EQ(read.reader.frameCount, 0xFFFFFFFFU) << i;
        EXPECT_EQ(read.reader.pixelType, PixelType::UInt16) << i;
        EXPECT_EQ(read.lines, i == 0 ? Lines{thumbnailIgnored} : Lines{}) << i;
    }
    EXPECT_FALSE(FileRead<TypeParam>(file, 0, 0xFFFFFFFF).succeeded);

    // Of more frames than 32 bits can tell, all that can be asked for are there.
    const Bytes more = this->FileOf({one, one, one});
    for (const uint32_t i : {0U, 0xFFFFFFFEU, 0xFFFFFFFFU})
    {
        const FileRead<TypeParam> read{more, 0, i};
        EXPECT_TRUE(read.succeeded) << i;
        EXPECT_EQ(read.reader.frameCount, 0xFFFFFFFFU) << i;
    }
}

// Only files of version 3 can be that large.
TEST(Dm3Reader, FindsAnImageBeyond32Bits)
{
    // An array as large as 32 bits can tell lies before the image.
    const DmLayout layout{3};
    const Bytes image = DmTags{layout}.Image(SmallNumberedImage(7)).AsGroup();
    const DmTags array = DmTags{layout}.Array("", DmType::byte, 0xFFFFFFFF, {});
    const Bytes start = DmFile{layout}.Root(array).Build();
    // Header, group, entry and description of the array.
    constexpr uint64_t arrayBegin = 12 + 6 + 3 + 20;
    const uint64_t imageBegin = arrayBegin + 0xFFFFFFFF;
    const uint64_t streamSize = imageBegin + image.size();

    const SparseRead<RawImageDm3> read{streamSize, start, imageBegin, image};
    EXPECT_TRUE(read.succeeded);
    EXPECT_THAT(read.lines, ElementsAre(noThumbnail));
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 7, 255));
}

} // namespace
