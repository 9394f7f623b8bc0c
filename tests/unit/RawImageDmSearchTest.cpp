#include "support/DmReaderTest.h"

#include <gmock/gmock.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;

using Bytes = std::vector<uint8_t>;

namespace {

// How images are found in the list of labels, unsigned values and large arrays. The tree of the tags does not
// count, only their order.

/// Writes tags of the kinds that matter, all in one group.
struct TagList
{
    explicit TagList(const DmLayout& fileLayout) : layout(fileLayout), tags(fileLayout) {}

    TagList& Data(uint8_t number)
    {
        tags.Array("Data", DmType::uint16, 10000, NumberedSamples(number));
        return *this;
    }

    TagList& DataType(uint32_t code)
    {
        tags.UInt32("DataType", code);
        return *this;
    }

    TagList& Dimensions(std::initializer_list<uint32_t> numbers)
    {
        DmTags dimensions{layout};
        for (const uint32_t number : numbers)
            dimensions.UInt32("", number);
        return Group("Dimensions", dimensions);
    }

    TagList& Group(const char* label, const DmTags& members)
    {
        tags.Group(label, members);
        return *this;
    }

    TagList& Unsigned(const char* label, uint32_t number)
    {
        tags.UInt32(label, number);
        return *this;
    }

    TagList& Signed(const char* label, uint8_t number)
    {
        tags.Value(label, DmType::int32, {number, 0, 0, 0});
        return *this;
    }

    TagList& Text(const char* label)
    {
        tags.String(label, u"text");
        return *this;
    }

    [[nodiscard]] DmTags NewGroup() const { return DmTags{layout}; }

    DmLayout layout;
    DmTags tags;
};

struct FoundFrame
{
    PixelType pixelType;
    uint32_t width;
    uint32_t height;
    /// The middle sample.
    uint32_t number;
};

struct SearchRow
{
    const char* what;
    void (*write)(TagList& list);
    std::vector<FoundFrame> frames;
};

constexpr auto uint16 = PixelType::UInt16;
constexpr auto int16 = PixelType::Int16;

template <typename Reader>
void ExpectFound(const DmLayout& layout, const SearchRow& row)
{
    SCOPED_TRACE(row.what);
    TagList list{layout};
    row.write(list);
    const Bytes file = DmFile{layout}.Root(list.tags).Build();
    const auto frameCount = static_cast<uint32_t>(row.frames.size());
    for (uint32_t i = 0; i < frameCount; ++i)
    {
        const FileRead<Reader> read{file, 1, i};
        EXPECT_TRUE(read.succeeded);
        EXPECT_EQ(read.reader.frameCount, frameCount);
        EXPECT_EQ(read.reader.pixelType, row.frames[i].pixelType);
        EXPECT_EQ(read.reader.width, row.frames[i].width);
        EXPECT_EQ(read.reader.height, row.frames[i].height);
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, row.frames[i].number, 255));
    }
    const std::string version = layout.version == 4 ? "DM4" : "DM3";
    for (const uint32_t mode : {0U, 1U})
    {
        const FileRead<Reader> beyond{file, mode, frameCount};
        EXPECT_FALSE(beyond.succeeded);
        EXPECT_THAT(beyond.lines, ElementsAre("[Lumora] " + version + ": No images found"));
    }
}

TYPED_TEST(DmReader, FindsAnImageByTheOrderOfItsTags)
{
    const SearchRow rows[] = {
        {"the order of Digital Micrograph",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 10}}},
        {"the dimensions before the type",
         [](TagList& list) {
             list.Data(10).Dimensions({1, 3}).DataType(1);
         },
         {{int16, 1, 3, 10}}},
        {"the type before the data",
         [](TagList& list) {
             list.DataType(10).Data(10).Dimensions({3, 1});
         },
         {}},
        {"the dimensions before the data",
         [](TagList& list) {
             list.Dimensions({3, 1}).Data(10).DataType(10);
         },
         {}},
        {"both before the data",
         [](TagList& list) {
             list.DataType(10).Dimensions({3, 1}).Data(10);
         },
         {}},
        {"no type",
         [](TagList& list) {
             list.Data(10).Dimensions({3, 1}).Text("Name");
         },
         {}},
        {"no dimensions", [](TagList& list) { list.Data(10).DataType(10).Text("Name"); }, {}},
        {"other tags between",
         [](TagList& list) {
             list.Data(10).Unsigned("a", 1).Text("b").DataType(10).Unsigned("", 2).Signed("c", 3);
             list.Text("").Dimensions({3, 1}).Unsigned("d", 4);
         },
         {{uint16, 3, 1, 10}}},
        {"two images",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions({3, 1}).Data(50).DataType(1).Dimensions({1, 3});
         },
         {{uint16, 3, 1, 10}, {int16, 1, 3, 50}}},
        {"more tags of an image that has been found",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions({3, 1}).DataType(1).Dimensions({1, 3});
         },
         {{uint16, 3, 1, 10}}},
        {"nothing is left over from the image before",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions({3, 1}).Data(50).DataType(10).Text("Name");
             list.Data(90).Text("Name");
         },
         {{uint16, 3, 1, 10}}},
    };
    for (const SearchRow& row : rows)
        ExpectFound<TypeParam>(this->layout, row);
}

TYPED_TEST(DmReader, TakesTheLastLargeArrayAsTheDataOfAnImage)
{
    const SearchRow rows[] = {
        {"two arrays before the type",
         [](TagList& list) {
             list.Data(10).Data(50).DataType(10).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 50}}},
        {"one before and one behind the type",
         [](TagList& list) {
             list.Data(10).DataType(10).Data(50).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 50}}},
        {"an array with another label",
         [](TagList& list) {
             list.tags.Array("Samples", DmType::uint16, 10000, NumberedSamples(10));
             list.DataType(10).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 10}}},
        {"an array without a label",
         [](TagList& list) {
             list.tags.Array("", DmType::uint16, 10000, NumberedSamples(10));
             list.DataType(10).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 10}}},
        {"an array of structs",
         [](TagList& list) {
             list.tags.StructArray("Data", {DmType::boolean, DmType::character}, 10000, NumberedSamples(10));
             list.DataType(10).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 10}}},
        {"an array of another type of elements",
         [](TagList& list) {
             list.tags.Array("Data", DmType::byte, 20000, NumberedSamples(10));
             list.DataType(10).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 10}}},
        {"an array of too few elements",
         [](TagList& list) {
             list.tags.Array("Data", DmType::uint16, 9999, Bytes(19998));
             list.DataType(10).Dimensions({3, 1});
         },
         {}},
        {"an array of few large elements",
         [](TagList& list) {
             list.tags.StructArray("Data", {DmType::float64, DmType::float64}, 9999, Bytes(159984));
             list.DataType(10).Dimensions({3, 1});
         },
         {}},
        {"a smaller array behind the data",
         [](TagList& list) {
             list.Data(10).tags.Array("Data", DmType::uint16, 9999, Bytes(19998));
             list.DataType(10).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 10}}},
        {"text, however long",
         [](TagList& list) {
             list.tags.String("Data", std::u16string(10000, u'x'));
             list.DataType(10).Dimensions({3, 1});
         },
         {}},
    };
    for (const SearchRow& row : rows)
        ExpectFound<TypeParam>(this->layout, row);
}

TYPED_TEST(DmReader, TakesAnUnsignedValueBehindItsLabelAsTheTypeOfTheSamples)
{
    const SearchRow rows[] = {
        {"a signed value",
         [](TagList& list) {
             list.Data(10).Signed("DataType", 10).Dimensions({3, 1});
         },
         {}},
        {"a value of 16 bits",
         [](TagList& list) {
             list.Data(10).tags.Value("DataType", DmType::uint16, {10, 0});
             list.Dimensions({3, 1});
         },
         {}},
        {"a value of 64 bits",
         [](TagList& list) {
             list.Data(10).tags.Value("DataType", DmType::uint64, {10, 0, 0, 0, 0, 0, 0, 0});
             list.Dimensions({3, 1});
         },
         {}},
        {"text",
         [](TagList& list) {
             list.Data(10).Text("DataType").Dimensions({3, 1});
         },
         {}},
        {"a group that begins with a value",
         [](TagList& list) {
             list.Data(10).Group("DataType", list.NewGroup().UInt32("", 10)).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 10}}},
        {"a group that begins with a labelled value",
         [](TagList& list) {
             list.Data(10).Group("DataType", list.NewGroup().UInt32("a", 10)).Dimensions({3, 1});
         },
         {}},
        {"a large array before the value",
         [](TagList& list) {
             list.Data(10).tags.Array("DataType", DmType::uint16, 10000, NumberedSamples(50));
             list.Unsigned("", 10).Dimensions({3, 1});
         },
         {}},
        {"a signed value before an unsigned one, of which only the latter is kept",
         [](TagList& list) {
             list.Data(10).Signed("DataType", 1).Unsigned("", 10).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 10}}},
        {"two types, of which the second counts",
         [](TagList& list) {
             list.Data(10).DataType(1).DataType(10).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 10}}},
        {"a label without a value does not undo the type",
         [](TagList& list) {
             list.Data(10).DataType(10).Text("DataType").Dimensions({3, 1});
         },
         {{uint16, 3, 1, 10}}},
        {"a label at the end",
         [](TagList& list) {
             list.Data(10).Dimensions({3, 1}).Text("DataType");
         },
         {}},
        {"an unknown type discards the data",
         [](TagList& list) {
             list.Data(10).DataType(3).DataType(10).Dimensions({3, 1});
         },
         {}},
        {"an unknown type discards the type and the data",
         [](TagList& list) {
             list.Data(10).DataType(10).DataType(0).Dimensions({3, 1});
         },
         {}},
        {"an unknown type discards the dimensions",
         [](TagList& list) {
             list.Data(10).Dimensions({3, 1}).DataType(3).Data(50).DataType(10);
         },
         {}},
        {"the image after one of an unknown type",
         [](TagList& list) {
             list.Data(10).DataType(3).Dimensions({9, 9}).Data(50).DataType(10).Dimensions({3, 1});
         },
         {{uint16, 3, 1, 50}}},
    };
    for (const SearchRow& row : rows)
        ExpectFound<TypeParam>(this->layout, row);
}

TYPED_TEST(DmReader, TakesTwoOrThreeUnsignedValuesBehindTheirLabelAsTheDimensions)
{
    const SearchRow rows[] = {
        {"one", [](TagList& list) { list.Data(10).DataType(10).Dimensions({3}).Unsigned("a", 1); }, {}},
        {"one at the end", [](TagList& list) { list.Data(10).DataType(10).Dimensions({3}); }, {}},
        {"none", [](TagList& list) { list.Data(10).DataType(10).Dimensions({}); }, {}},
        {"one, and a value behind the group",
         [](TagList& list) { list.Data(10).DataType(10).Dimensions({3}).Unsigned("", 1); },
         {{uint16, 3, 1, 10}}},
        {"values without a group",
         [](TagList& list) { list.Data(10).DataType(10).Unsigned("Dimensions", 3).Unsigned("", 1); },
         {{uint16, 3, 1, 10}}},
        {"three",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions({3, 1, 2});
         },
         {{uint16, 3, 1, 10}, {uint16, 3, 1, 11}}},
        {"two, and a value behind the group",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions({3, 1}).Unsigned("", 2);
         },
         {{uint16, 3, 1, 10}, {uint16, 3, 1, 11}}},
        {"two, and a labelled value behind the group",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions({3, 1}).Unsigned("PixelDepth", 2);
         },
         {{uint16, 3, 1, 10}}},
        {"four",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions({3, 1, 2, 5});
         },
         {{uint16, 3, 1, 10}, {uint16, 3, 1, 11}}},
        {"the first one with a label",
         [](TagList& list) {
             const DmTags labelled = list.NewGroup().UInt32("x", 3).UInt32("", 1).UInt32("", 2);
             list.Data(10).DataType(10).Group("Dimensions", labelled);
         },
         {}},
        {"the second one with a label",
         [](TagList& list) {
             const DmTags labelled = list.NewGroup().UInt32("", 3).UInt32("y", 1);
             list.Data(10).DataType(10).Group("Dimensions", labelled);
         },
         {}},
        {"the third one with a label",
         [](TagList& list) {
             const DmTags labelled = list.NewGroup().UInt32("", 3).UInt32("", 1).UInt32("z", 2);
             list.Data(10).DataType(10).Group("Dimensions", labelled);
         },
         {{uint16, 3, 1, 10}}},
        {"signed ones",
         [](TagList& list) { list.Data(10).DataType(10).Signed("Dimensions", 3).Signed("", 1); },
         {}},
        {"a signed one between, which is not kept",
         [](TagList& list) {
             list.Data(10).DataType(10).Unsigned("Dimensions", 3).Signed("", 7).Text("").Unsigned("", 1);
         },
         {{uint16, 3, 1, 10}}},
        {"a large array between the first and the second",
         [](TagList& list) {
             list.Data(10).DataType(10).Unsigned("Dimensions", 3);
             list.tags.Array("", DmType::uint16, 10000, NumberedSamples(50));
             list.Unsigned("", 1).Text("Name");
         },
         {}},
        {"a large array between the second and the third, which is too late to be the data",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions({3, 1});
             list.tags.Array("", DmType::uint16, 10000, NumberedSamples(50));
             list.Unsigned("", 2);
         },
         {{uint16, 3, 1, 10}}},
        {"dimensions twice, of which the latter count",
         [](TagList& list) {
             list.Data(10).Dimensions({9, 9, 2}).Dimensions({3, 1}).DataType(10);
         },
         {{uint16, 3, 1, 10}}},
        {"a single dimension does not undo two",
         [](TagList& list) {
             list.Data(10).Dimensions({3, 1, 2}).Dimensions({9}).Text("Name").DataType(10);
         },
         {{uint16, 3, 1, 10}, {uint16, 3, 1, 11}}},
        {"no frames",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions({3, 1, 0});
         },
         {}},
        {"an image of no frames is done with all the same",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions({3, 1, 0}).DataType(10).Dimensions({3, 1});
         },
         {}},
    };
    for (const SearchRow& row : rows)
        ExpectFound<TypeParam>(this->layout, row);
}

TYPED_TEST(DmReader, KnowsTheLabelsByTheirExactSpelling)
{
    using namespace std::string_literals;
    const auto fileWith = [this](const std::string& type, const std::string& dimensions) {
        return this
            ->File(this->Tags()
                       .Array("Data", DmType::uint16, 10000, NumberedSamples(10))
                       .UInt32(type, 10)
                       .Group(dimensions, this->Tags().UInt32("", 3).UInt32("", 1)))
            .Build();
    };
    EXPECT_TRUE(FileRead<TypeParam>(fileWith("DataType", "Dimensions")).succeeded);
    for (const std::string& label : {"datatype"s, "DATATYPE"s, "DataTyp"s, "DataType "s, " DataType"s,
                                     "DataTypes"s, "Data Type"s, "DataType\0"s, "DataTyp\xE5"s, ""s})
        EXPECT_FALSE(FileRead<TypeParam>(fileWith(label, "Dimensions")).succeeded) << label;
    for (const std::string& label :
         {"dimensions"s, "Dimension"s, "Dimensions "s, "Dimensions\0"s, "DimensionS"s, "Dimension\xF3"s, ""s})
        EXPECT_FALSE(FileRead<TypeParam>(fileWith("DataType", label)).succeeded) << label;
}

} // namespace
