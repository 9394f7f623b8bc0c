#include "support/DmReaderTest.h"
#include "support/streams/SparseStream.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <utility>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;

namespace {

constexpr uint64_t windowBytes = 0x400000;

/// Expects that the header's facts are found with at most as many bytes read as the file holds, in as few
/// turns as the window allows.
template <typename Reader>
void ExpectImages(const Bytes& file, uint32_t count, const char* what)
{
    SCOPED_TRACE(what);
    const FileRead<Reader> read{file, 0};
    EXPECT_EQ(read.succeeded, count > 0);
    EXPECT_EQ(read.reader.frameCount, count);
    EXPECT_LE(read.stream.readCalls, file.size() / windowBytes + 2);
    // A label, the longest of what is taken at once, can stand across the end of a window and is read again.
    EXPECT_LE(read.stream.bytesRead, file.size() + read.stream.readCalls * 0xFFFF);
}

/// Groups in groups, the outermost one included; the innermost one holds the members.
DmTags Nested(const DmLayout& layout, uint32_t groups, const DmTags& members)
{
    DmTags tags = members;
    for (uint32_t i = 1; i < groups; ++i)
        tags = DmTags{layout}.Group("", tags);
    return tags;
}

TYPED_TEST(DmReader, FollowsGroups256DeepWithTheRootGroup)
{
    const auto fileOf = [this](uint32_t groups) {
        return this
            ->File(this->Tags()
                       .Image(SmallNumberedImage(1))
                       .Group("", Nested(this->layout, groups - 1, this->Tags()))
                       .Image(SmallNumberedImage(2)))
            .Build();
    };
    ExpectImages<TypeParam>(fileOf(2), 2, "2");
    ExpectImages<TypeParam>(fileOf(255), 2, "255");
    ExpectImages<TypeParam>(fileOf(256), 2, "256");
    // What was found before stays.
    ExpectImages<TypeParam>(fileOf(257), 1, "257");
    ExpectImages<TypeParam>(fileOf(300), 1, "300");
}

TYPED_TEST(DmReader, FindsAnImageInTheDeepestGroups)
{
    // An image takes three groups of its own: its entry, its data and their dimensions.
    const DmTags image = this->Tags().Image(SmallNumberedImage(7));
    const FileRead<TypeParam> deepest{this->File(Nested(this->layout, 253, image)).Build()};
    EXPECT_TRUE(deepest.succeeded);
    EXPECT_THAT(deepest.reader.displayPixels, ElementsAre(0, 7, 255));

    const FileRead<TypeParam> tooDeep{this->File(Nested(this->layout, 254, image)).Build()};
    EXPECT_FALSE(tooDeep.succeeded);
    EXPECT_THAT(tooDeep.lines, ElementsAre(this->Line("No images found")));
}

/// A root group with an image, and behind it the same bytes again and again, a megabyte in all.
Bytes FileWithRepeated(const DmLayout& layout, const Bytes& repeated)
{
    ByteWriter content;
    content.Put(DmTags{layout}.Image(SmallNumberedImage(1)).AsGroup());
    while (content.bytes.size() < 1000000)
        content.Put(repeated);
    return DmFile{layout}.Content(content.bytes).Build();
}

/// The file with zero bytes for the elements of the array that begins at `place`.
SparseStream WithElements(const Bytes& file, size_t place, uint32_t count)
{
    const auto split = file.begin() + static_cast<ptrdiff_t>(place);
    return {file.size() + count, Bytes(file.begin(), split), place + count, Bytes(split, file.end())};
}

TYPED_TEST(DmReader, ReadsTagsAcrossTheEndOfAWindow)
{
    const DmTags image = this->Tags().Group(std::string(300, 'a'), this->Tags()).Image(SmallNumberedImage(7));
    const size_t imageBytes = image.AsGroup().size();
    for (size_t shift = 0; shift <= imageBytes; ++shift)
    {
        // An array that lets the rest of the file begin so many bytes before the window's end.
        const auto fileOf = [this](uint32_t count, const DmTags& rest) {
            const Bytes root = this->Tags().Array("", DmType::byte, count, {}).Group("", rest).AsGroup();
            return DmFile{this->layout}
                .Content(root)
                .ClaimRootBytes(static_cast<uint32_t>(root.size()) + count)
                .Build();
        };
        constexpr size_t trailer = 8;
        const size_t place = this->File(this->Tags().Array("", DmType::byte, 0, {})).Build().size() - trailer;
        const auto count = static_cast<uint32_t>(windowBytes - place - shift);
        SparseStream stream = WithElements(fileOf(count, image), place, count);
        TypeParam reader;
        EXPECT_TRUE(reader.Read(&stream, *stream.faults.reportedSize, 1, 0)) << shift;
        EXPECT_THAT(reader.displayPixels, ElementsAre(0, 7, 255)) << shift;
    }
}

TYPED_TEST(DmReader, GivesUpAChainOfGroups)
{
    // A group of one tag, and the beginning of an entry that is a group again.
    DmWriter link{this->layout};
    link.Put(uint16_t{0});
    link.Word(1).Put(DmTags::groupKind).Put(uint16_t{0});
    if (this->layout.version == 4)
        link.Word(0xFFFFFFFF);
    ExpectImages<TypeParam>(FileWithRepeated(this->layout, link.bytes), 1, "chain");
}

TYPED_TEST(DmReader, WalksThroughAFileOfSmallTagsOnce)
{
    const std::pair<const char*, DmTags> rows[] = {
        {"empty groups", this->Tags()},
        {"short labels", this->Tags().Group("a", this->Tags())},
        {"long labels", this->Tags().Group(std::string(0xFFFF, 'a'), this->Tags())},
        {"labels of types of samples", this->Tags().String("DataType", u"")},
        {"labels of dimensions", this->Tags().Group("Dimensions", this->Tags())},
        {"values", this->Tags().UInt32("", 0)},
        {"dimensions", this->Tags().UInt32("Dimensions", 0xFFFFFFFF)},
        {"large arrays", this->Tags().Array("", DmType::none, 0xFFFFFFFF, {})},
        {"large arrays whose size wraps to none", this->Tags().Array("", DmType::float64, 0x20000000, {})},
        {"text", this->Tags().String("", u"a")},
        {"structs", this->Tags().Struct("", {}, {})},
        {"arrays of empty structs", this->Tags().StructArray("", {}, 0xFFFFFFFF, {})},
    };
    for (const auto& [what, tags] : rows)
        ExpectImages<TypeParam>(FileWithRepeated(this->layout, tags.AsGroup()), 1, what);
}

/// The shortest description of a stack of 1 x 1 samples.
DmTags ShortestStack(const DmLayout& layout, uint32_t frameCount)
{
    return DmTags{layout}
        .Array("", DmType::none, 10000, {})
        .UInt32("DataType", 10)
        .UInt32("Dimensions", 1)
        .UInt32("", 1)
        .UInt32("", frameCount);
}

TYPED_TEST(DmReader, FindsThousandsOfImages)
{
    const Bytes stack = ShortestStack(this->layout, 3).AsGroup();
    const size_t firstBytes = this->Tags().Image(SmallNumberedImage(1)).AsGroup().size();
    const size_t stackCount = (999999 - firstBytes) / stack.size() + 1;
    ExpectImages<TypeParam>(FileWithRepeated(this->layout, stack), static_cast<uint32_t>(1 + 3 * stackCount),
                            "stacks");
}

TYPED_TEST(DmReader, CountsFramesWithoutListingThem)
{
    const Bytes stack = ShortestStack(this->layout, 0xFFFFFFFF).AsGroup();
    const Bytes file = FileWithRepeated(this->layout, stack);
    ExpectImages<TypeParam>(file, 0xFFFFFFFF, "stacks");
    for (const uint32_t frameIndex : {1U, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_TRUE(FileRead<TypeParam>(file, 0, frameIndex).succeeded) << frameIndex;
}

TYPED_TEST(DmReader, StepsOverAStructOfAMillionFields)
{
    const std::vector<uint32_t> fields(1000000, DmType::byte);
    const auto fileOf = [this](const DmTags& tags) {
        return this
            ->File(this->Tags().Image(SmallNumberedImage(1)).Group("", tags).Image(SmallNumberedImage(2)))
            .Build();
    };
    ExpectImages<TypeParam>(fileOf(this->Tags().Struct("", fields, Bytes(1000000))), 2, "struct");
    ExpectImages<TypeParam>(fileOf(this->Tags().StructArray("", fields, 3, Bytes(3000000))), 2, "three");
    ExpectImages<TypeParam>(fileOf(this->Tags().Struct("", fields, Bytes(999999))), 1, "a value missing");

    // A million values of eight bytes, 537 times, are 1032704 bytes in 32 bits.
    const std::vector<uint32_t> wideFields(1000000, DmType::int64);
    ExpectImages<TypeParam>(fileOf(this->Tags().StructArray("", wideFields, 537, Bytes(1032704))), 2,
                            "a size beyond 32 bits");
}

TYPED_TEST(DmReader, EndsTheWalkAtANumberOfFieldsThatTheFileCannotHold)
{
    for (const uint32_t count : {1000U, 0x10000000U, 0x20000000U, 0x80000000U, 0xFFFFFFFFU})
    {
        const DmWriter description = DmWriter{this->layout}.Word(0).Word(count);
        DmWriter arrayDescription{this->layout};
        arrayDescription.Word(DmType::structure).Put(description.bytes);
        const DmTags structure = this->Tags().Data("", DmType::structure, description, Bytes(100));
        const DmTags array = this->Tags().Data("", DmType::array, arrayDescription, Bytes(100));
        for (const DmTags* tags : {&structure, &array})
            ExpectImages<TypeParam>(
                this->File(this->Tags().Image(SmallNumberedImage(1)).Group("", *tags)).Build(), 1, "fields");
    }
}

/// A file with one image, whose samples are left out.
struct FileAroundData
{
    Bytes before;
    Bytes behind;
};

FileAroundData AroundData(const DmLayout& layout, uint32_t dataBytes)
{
    DmImage image = NumberedImage(0);
    image.elementType = DmType::byte;
    image.elementCount = dataBytes;
    image.samples = {};
    const Bytes root = DmTags{layout}.Image(image).AsGroup();
    const Bytes whole =
        DmFile{layout}.Content(root).ClaimRootBytes(static_cast<uint32_t>(root.size() + dataBytes)).Build();

    // Behind the label: size of the contents, delimiter, number of type words, and three words of type.
    const size_t descriptionBytes = layout.version == 4 ? 8 + 4 + 4 * 8 : 4 + 4 * 4;
    const Bytes label = {0, 4, 'D', 'a', 't', 'a'};
    const auto data = std::search(whole.begin(), whole.end(), label.begin(), label.end()) +
                      static_cast<ptrdiff_t>(label.size() + descriptionBytes);
    return {{whole.begin(), data}, {data, whole.end()}};
}

TYPED_TEST(DmReader, ReadsNoSamplesWhileItLooksForImages)
{
    for (const uint32_t dataBytes : {40000000U, 0xC0000000U})
    {
        const FileAroundData file = AroundData(this->layout, dataBytes);
        const uint64_t place = file.before.size() + dataBytes;
        const uint64_t streamSize = place + file.behind.size();
        SparseStream stream{streamSize, file.before, place, file.behind};
        TypeParam header;
        EXPECT_TRUE(header.Read(&stream, streamSize, 0, 0));
        EXPECT_EQ(header.width, 3U);
        EXPECT_EQ(header.frameCount, 1U);
        // The window at the start, and what follows the samples.
        EXPECT_EQ(stream.readCalls, 2U);
        EXPECT_EQ(stream.bytesRead, windowBytes + file.behind.size());

        // The frame itself has six bytes.
        TypeParam frame;
        EXPECT_TRUE(frame.Read(&stream, streamSize, 1, 0));
        EXPECT_EQ(frame.displayPixels, Bytes(3));
        EXPECT_EQ(stream.bytesRead, 2 * (windowBytes + file.behind.size()) + 6);
    }
}

TYPED_TEST(DmReader, ReadsEveryPartOfALongFileAtMostOnce)
{
    DmTags list = this->Tags().Image(SmallNumberedImage(1));
    for (int i = 0; i < 8; ++i)
        list.Array("", DmType::byte, 3000000, Bytes(3000000));
    list.Image(SmallNumberedImage(2));
    ExpectImages<TypeParam>(this->File(list).Build(), 2, "arrays");
}

} // namespace
