#include "support/DmReaderTest.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;

namespace {

// An image before and an image behind the tags of a test: only a walk that has kept in step finds both.

template <typename Reader>
void ExpectImages(const Bytes& file, uint32_t count, const testing::Message& what)
{
    SCOPED_TRACE(what);
    for (uint32_t i = 0; i < count; ++i)
    {
        const FileRead<Reader> read{file, 0, i};
        EXPECT_TRUE(read.succeeded);
        EXPECT_EQ(read.reader.frameCount, count);
    }
    if (count == 2)
    {
        EXPECT_THAT(FileRead<Reader>(file, 1, 1).reader.displayPixels, ElementsAre(0, 72, 255));
    }
    EXPECT_FALSE(FileRead<Reader>(file, 0, count).succeeded);
}

Bytes FileAround(const DmLayout& layout, const DmTags& tags)
{
    return DmFile{layout}
        .Root(DmTags{layout}.Image(SmallNumberedImage(71)).Group("", tags).Image(SmallNumberedImage(72)))
        .Build();
}

template <typename Reader>
void ExpectWalkPasses(const DmLayout& layout, const DmTags& tags, const testing::Message& what)
{
    ExpectImages<Reader>(FileAround(layout, tags), 2, what);
}

template <typename Reader>
void ExpectWalkEnds(const DmLayout& layout, const DmTags& tags, const testing::Message& what)
{
    ExpectImages<Reader>(FileAround(layout, tags), 1, what);
}

testing::Message Number(size_t number)
{
    return testing::Message() << number;
}

testing::Message Text(const char* text)
{
    return testing::Message() << text;
}

struct TypeRow
{
    uint32_t type;
    size_t bytes;
};

constexpr TypeRow simpleTypes[] = {{0, 0}, {2, 2}, {3, 4}, {4, 2},  {5, 4},  {6, 4},
                                   {7, 8}, {8, 1}, {9, 1}, {10, 1}, {11, 8}, {12, 8}};

/// Codes that stand for no simple type and for neither struct, string nor array.
constexpr uint32_t unknownTypes[] = {1,  13, 14,    16,         17,         19,         21,
                                     22, 23, 0x100, 0x00020000, 0x02000000, 0x80000005, 0xFFFFFFFF};

/// Bytes that begin no entry, so that a walk which takes one of them for a tag ends.
Bytes Noise(size_t count)
{
    return Bytes(count, 0xEE);
}

TYPED_TEST(DmReader, StepsOverAValueOfEverySimpleType)
{
    for (const TypeRow& row : simpleTypes)
    {
        ExpectWalkPasses<TypeParam>(this->layout, this->Tags().Value("", row.type, Noise(row.bytes)),
                                    Number(row.type));
        ExpectWalkEnds<TypeParam>(this->layout, this->Tags().Value("", row.type, Noise(row.bytes + 1)),
                                  Number(row.type));
    }
}

TYPED_TEST(DmReader, TakesAValueOfAnUnknownTypeToHaveNoBytes)
{
    for (const uint32_t type : unknownTypes)
    {
        ExpectWalkPasses<TypeParam>(this->layout, this->Tags().Value("", type, {}), Number(type));
        ExpectWalkEnds<TypeParam>(this->layout, this->Tags().Value("", type, Noise(1)), Number(type));
    }
}

TYPED_TEST(DmReader, StepsOverText)
{
    for (const std::u16string_view text : {u"", u"a", u"two words", u"\u00B5m"})
        ExpectWalkPasses<TypeParam>(this->layout, this->Tags().String("", text), Number(text.size()));
    // 200 characters of which the upper byte counts too.
    ExpectWalkPasses<TypeParam>(this->layout, this->Tags().String("", std::u16string(200, u'x')),
                                Text("long"));
    const DmWriter length = DmWriter{this->layout}.Word(3);
    ExpectWalkEnds<TypeParam>(this->layout, this->Tags().Data("", DmType::string, length, Noise(7)),
                              Text("a byte too many"));
}

TYPED_TEST(DmReader, EndsTheWalkAtTextThatReachesBeyondTheFile)
{
    for (const uint32_t characters : {1000U, 0x7FFFFFFFU, 0x80000000U, 0x80000001U, 0xFFFFFFFFU})
    {
        const DmWriter length = DmWriter{this->layout}.Word(characters);
        ExpectWalkEnds<TypeParam>(this->layout, this->Tags().Data("", DmType::string, length, {0x41, 0}),
                                  Number(characters));
    }
}

TYPED_TEST(DmReader, StepsOverAStructByTheSizesOfItsFields)
{
    for (const TypeRow& row : simpleTypes)
    {
        const std::vector<uint32_t> fields = {row.type, DmType::byte, row.type};
        ExpectWalkPasses<TypeParam>(this->layout, this->Tags().Struct("", fields, Noise(2 * row.bytes + 1)),
                                    Number(row.type));
        ExpectWalkEnds<TypeParam>(this->layout, this->Tags().Struct("", fields, Noise(2 * row.bytes + 2)),
                                  Number(row.type));
    }
    ExpectWalkPasses<TypeParam>(this->layout, this->Tags().Struct("", {}, {}), Text("no fields"));
}

TYPED_TEST(DmReader, KeepsNothingOfAStruct)
{
    // Unsigned values would be taken as a third dimension; here they belong to a struct.
    const DmTags tags = this->Tags()
                            .Array("Data", DmType::uint16, 10000, NumberedSamples(7))
                            .UInt32("DataType", 10)
                            .Group("Dimensions", this->Tags().UInt32("", 3).UInt32("", 1))
                            .Struct("", {DmType::uint32}, {9, 0, 0, 0});
    const FileRead<TypeParam> read{this->File(tags).Build()};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.frameCount, 1U);
}

TYPED_TEST(DmReader, StepsOverAnArrayByTheSizeOfItsElements)
{
    for (const TypeRow& row : simpleTypes)
        for (const uint32_t count : {0U, 1U, 3U, 300U})
        {
            ExpectWalkPasses<TypeParam>(this->layout,
                                        this->Tags().Array("", row.type, count, Noise(count * row.bytes)),
                                        Number(row.type) << " x " << count);
            ExpectWalkEnds<TypeParam>(this->layout,
                                      this->Tags().Array("", row.type, count, Noise(count * row.bytes + 1)),
                                      Number(row.type) << " x " << count);
        }
}

TYPED_TEST(DmReader, StepsOverAnArrayOfStructsByTheSumOfTheirFields)
{
    for (const TypeRow& row : simpleTypes)
        for (const uint32_t count : {0U, 1U, 3U})
        {
            const std::vector<uint32_t> fields = {row.type, DmType::boolean, row.type};
            const size_t bytes = count * (2 * row.bytes + 1);
            ExpectWalkPasses<TypeParam>(this->layout,
                                        this->Tags().StructArray("", fields, count, Noise(bytes)),
                                        Number(row.type) << " x " << count);
            ExpectWalkEnds<TypeParam>(this->layout,
                                      this->Tags().StructArray("", fields, count, Noise(bytes + 1)),
                                      Number(row.type) << " x " << count);
        }
    ExpectWalkPasses<TypeParam>(this->layout, this->Tags().StructArray("", {}, 0xFFFFFFFF, {}),
                                Text("structs without fields"));
}

// Sizes are products in 32 bits, as the writers compute them.
TYPED_TEST(DmReader, ComputesTheSizeOfAnArrayIn32Bits)
{
    struct Row
    {
        uint32_t type;
        uint32_t count;
        size_t bytes;
    };
    constexpr Row rows[] = {
        {DmType::uint32, 0x40000000, 0},   {DmType::int32, 0x40000001, 4}, {DmType::int16, 0x80000003, 6},
        {DmType::float64, 0xE0000002, 16}, {DmType::int64, 0x20000000, 0}, {DmType::none, 0xFFFFFFFF, 0},
    };
    for (const Row& row : rows)
        ExpectWalkPasses<TypeParam>(this->layout,
                                    this->Tags().Array("", row.type, row.count, Noise(row.bytes)),
                                    Number(row.type) << " x " << row.count);
    // 12 * 357913942 = 2^32 + 8
    const std::vector<uint32_t> fields = {DmType::uint32, DmType::float64};
    ExpectWalkPasses<TypeParam>(this->layout, this->Tags().StructArray("", fields, 357913942, Noise(8)),
                                Text("structs"));

    for (const uint32_t type : {DmType::byte, DmType::uint16, DmType::uint32})
        ExpectWalkEnds<TypeParam>(this->layout, this->Tags().Array("", type, 0x3FFFFFFF, {}), Number(type));
}

TYPED_TEST(DmReader, EndsTheWalkAtAFieldOrAnElementOfNoSimpleType)
{
    std::vector<uint32_t> types{std::begin(unknownTypes), std::end(unknownTypes)};
    types.insert(types.end(), {DmType::string, DmType::array});
    for (const uint32_t type : types)
        for (const uint32_t count : {0U, 1U})
            ExpectWalkEnds<TypeParam>(this->layout, this->Tags().Array("", type, count, {}), Number(type));

    types.push_back(DmType::structure);
    for (const uint32_t type : types)
        for (const std::vector<uint32_t>& fields :
             {std::vector<uint32_t>{type}, {DmType::none, type}, {type, DmType::none}})
        {
            ExpectWalkEnds<TypeParam>(this->layout, this->Tags().Struct("", fields, {}), Number(type));
            ExpectWalkEnds<TypeParam>(this->layout, this->Tags().StructArray("", fields, 0, {}),
                                      Number(type));
        }
}

// Structs and their fields have no names in practice; a length is stated and no name follows.
TYPED_TEST(DmReader, IgnoresTheLengthsOfNamesAndTheNumberOfTypeWords)
{
    for (const uint32_t length : {1U, 100U, 0xFFFFFFFFU})
    {
        const DmWriter fields = DmWriter{this->layout}.Word(length).Word(2).Word(length).Word(DmType::int16);
        DmWriter description = fields;
        description.Word(length).Word(DmType::int32);
        DmTags tags = this->Tags().Data("", DmType::structure, description, Noise(6));

        DmWriter array = DmWriter{this->layout}.Word(DmType::structure);
        array.Put(description.bytes);
        array.Word(2);
        tags.Data("", DmType::array, array, Noise(12));

        DmWriter contents{this->layout};
        contents.Text("%%%%");
        contents.Word(length).Word(DmType::int16).Put(uint16_t{0});
        tags.Entry(DmTags::dataKind, "", contents.bytes);
        ExpectWalkPasses<TypeParam>(this->layout, tags, Number(length));
    }
}

TYPED_TEST(DmReader, EndsTheWalkAtAWrongDelimiter)
{
    for (const std::string delimiter : {"%%%%", "$%%%", "%$%%", "%%$%", "%%%$", "%%%&"})
    {
        DmWriter contents{this->layout};
        contents.Text(delimiter);
        contents.Word(1).Word(DmType::none);
        const DmTags tags = this->Tags().Entry(DmTags::dataKind, "", contents.bytes);
        ExpectImages<TypeParam>(FileAround(this->layout, tags), delimiter == "%%%%" ? 2 : 1,
                                Text(delimiter.c_str()));
    }
}

TYPED_TEST(DmReader, EndsTheWalkAtAnEntryThatIsNeitherAGroupNorData)
{
    const Bytes group = this->Tags().AsGroup();
    for (uint32_t kind = 0; kind < 256; ++kind)
        if (kind != DmTags::groupKind && kind != DmTags::dataKind)
            ExpectWalkEnds<TypeParam>(
                this->layout, this->Tags().Entry(static_cast<uint8_t>(kind), "label", group), Number(kind));
    ExpectWalkPasses<TypeParam>(this->layout, this->Tags().Entry(20, "label", group), Text("group"));
}

TYPED_TEST(DmReader, ReadsLabelsOfEveryLength)
{
    for (const size_t length : {0U, 1U, 10U, 255U, 256U, 0x1234U, 0xFFFFU})
    {
        const std::string label(length, '\xE9');
        ExpectWalkPasses<TypeParam>(this->layout, this->Tags().UInt32(label, 1).Group(label, this->Tags()),
                                    Number(length));
    }
    ExpectWalkPasses<TypeParam>(this->layout, this->Tags().UInt32(std::string(5, '\0'), 1), Text("zeros"));
}

TYPED_TEST(DmReader, IgnoresTheFlagsOfAGroup)
{
    for (const uint32_t flag : {0x00U, 0x01U, 0x02U, 0x25U, 0xFFU})
    {
        Bytes group = this->Tags().Image(SmallNumberedImage(71)).Image(SmallNumberedImage(72)).AsGroup();
        group[0] = static_cast<uint8_t>(flag);
        group[1] = static_cast<uint8_t>(flag + 1);
        ExpectImages<TypeParam>(DmFile{this->layout}.Content(group).Build(), 2, Number(flag));
    }
}

TEST(Dm4Reader, IgnoresTheSizeOfAnEntrysContents)
{
    const DmLayout layout{4};
    Bytes file = FileAround(layout, DmTags{layout}.UInt32("value", 1).Group("group", DmTags{layout}));
    for (const std::string label : {"value", "group", "DataType", "Dimensions", "ImageData"})
        for (const uint32_t noise : {0x00U, 0x01U, 0xFFU})
        {
            const auto end = std::search(file.begin(), file.end(), label.begin(), label.end()) +
                             static_cast<ptrdiff_t>(label.size());
            std::fill_n(end, 8, static_cast<uint8_t>(noise));
            ExpectImages<RawImageDm4>(file, 2, testing::Message() << label << " " << noise);
        }
}

Bytes Joined(std::initializer_list<Bytes> parts)
{
    ByteWriter writer;
    for (const Bytes& part : parts)
        writer.Put(part);
    return std::move(writer.bytes);
}

TYPED_TEST(DmReader, ReadsGroupAfterGroupUntilOneFails)
{
    const Bytes first = this->Tags().Image(SmallNumberedImage(71)).AsGroup();
    const Bytes second = this->Tags().Image(SmallNumberedImage(72)).AsGroup();
    const Bytes empty = this->Tags().AsGroup();
    const Bytes failing = this->Tags().Entry(0, "", {}).AsGroup();

    const auto fileOf = [this](std::initializer_list<Bytes> groups) {
        return DmFile{this->layout}.Content(Joined(groups)).Build();
    };
    ExpectImages<TypeParam>(fileOf({first, second}), 2, Text("two groups"));
    ExpectImages<TypeParam>(fileOf({empty, first, empty, empty, second}), 2, Text("empty groups"));
    ExpectImages<TypeParam>(fileOf({first, failing, second}), 1, Text("a group that fails"));
    ExpectImages<TypeParam>(fileOf({first, Noise(50)}), 1, Text("noise"));
    ExpectImages<TypeParam>(fileOf({failing, first}), 0, Text("nothing before the group that fails"));
}

TYPED_TEST(DmReader, BelievesTheNumberOfTagsThatAGroupStates)
{
    const auto fileWithCount = [this](uint32_t count) {
        return this
            ->File(this->Tags().Image(SmallNumberedImage(71)).Image(SmallNumberedImage(72)).ClaimCount(count))
            .Build();
    };
    // What is left over is no group.
    ExpectImages<TypeParam>(fileWithCount(0), 0, Text("too few"));
    ExpectImages<TypeParam>(fileWithCount(1), 1, Text("too few"));
    ExpectImages<TypeParam>(fileWithCount(2), 2, Text("right"));
    // The zeros at the end are no tag.
    for (const uint32_t count : {3U, 4U, 0x80000000U, 0xFFFFFFFFU})
        ExpectImages<TypeParam>(fileWithCount(count), 2, Text("too many"));
}

TYPED_TEST(DmReader, KeepsWhatItFoundBeforeTheStreamFailed)
{
    // More text between the images than is read at once.
    const Bytes file = FileAround(this->layout, this->Tags().String("", std::u16string(0x200001, u'x')));
    ExpectImages<TypeParam>(file, 2, Text("whole"));

    for (const StreamFaults& faults : {StreamFaults{.failSeekAt = 2}, StreamFaults{.failReadAt = 2}})
    {
        const FileRead<TypeParam> read{file, 1, 0, faults};
        EXPECT_TRUE(read.succeeded);
        EXPECT_EQ(read.reader.frameCount, 1U);
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 71, 255));
    }
}

TYPED_TEST(DmReader, RefusesAFileInWhichTheWalkFindsNothing)
{
    for (const DmTags& tags : {this->Tags(), this->Tags().Entry(0, "", {}),
                               this->Tags().UInt32("DataType", 10).String("Name", u"nothing")})
        ExpectRefusal<TypeParam>(this->File(tags).Build(), {this->Line("No images found")}, "",
                                 HasFacts(DmFacts<TypeParam>()));
}

} // namespace
