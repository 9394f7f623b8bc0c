#include "support/files/DmSearch.h"

#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;

// Images are found in the list of labels, unsigned values and large arrays. The tree of the tags does not
// count, only their order.

namespace {

constexpr auto uint16 = PixelType::UInt16;
constexpr auto int16 = PixelType::Int16;

TYPED_TEST(DmReader, FindsAnImageByTheOrderOfItsTags)
{
    const SearchRow rows[] = {
        {"the order of Digital Micrograph",
         [](TagList& list) { list.Data(10).DataType(10).Dimensions(3, 1); },
         {{uint16, 3, 1, 10}}},
        {"the dimensions before the type",
         [](TagList& list) { list.Data(10).Dimensions(1, 3).DataType(1); },
         {{int16, 1, 3, 10}}},
        {"the type before the data", [](TagList& list) { list.DataType(10).Data(10).Dimensions(3, 1); }, {}},
        {"the dimensions before the data",
         [](TagList& list) { list.Dimensions(3, 1).Data(10).DataType(10); },
         {}},
        {"both before the data", [](TagList& list) { list.DataType(10).Dimensions(3, 1).Data(10); }, {}},
        {"no type", [](TagList& list) { list.Data(10).Dimensions(3, 1).Text("Name"); }, {}},
        {"no dimensions", [](TagList& list) { list.Data(10).DataType(10).Text("Name"); }, {}},
        {"other tags between",
         [](TagList& list) {
             list.Data(10).Unsigned("a", 1).Text("b").DataType(10).Unsigned("", 2).Signed("c", 3);
             list.Text("").Dimensions(3, 1).Unsigned("d", 4);
         },
         {{uint16, 3, 1, 10}}},
        {"two images",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions(3, 1).Data(50).DataType(1).Dimensions(1, 3);
         },
         {{uint16, 3, 1, 10}, {int16, 1, 3, 50}}},
        {"more tags of an image that has been found",
         [](TagList& list) { list.Data(10).DataType(10).Dimensions(3, 1).DataType(1).Dimensions(1, 3); },
         {{uint16, 3, 1, 10}}},
        {"nothing is left over from the image before",
         [](TagList& list) {
             list.Data(10).DataType(10).Dimensions(3, 1).Data(50).DataType(10).Text("Name");
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
         [](TagList& list) { list.Data(10).Data(50).DataType(10).Dimensions(3, 1); },
         {{uint16, 3, 1, 50}}},
        {"one before and one behind the type",
         [](TagList& list) { list.Data(10).DataType(10).Data(50).Dimensions(3, 1); },
         {{uint16, 3, 1, 50}}},
        {"an array with another label",
         [](TagList& list) {
             list.tags.Array("Samples", DmType::uint16, 10000, NumberedSamples(10));
             list.DataType(10).Dimensions(3, 1);
         },
         {{uint16, 3, 1, 10}}},
        {"an array without a label",
         [](TagList& list) {
             list.tags.Array("", DmType::uint16, 10000, NumberedSamples(10));
             list.DataType(10).Dimensions(3, 1);
         },
         {{uint16, 3, 1, 10}}},
        {"an array of structs",
         [](TagList& list) {
             list.tags.StructArray("Data", {DmType::boolean, DmType::character}, 10000, NumberedSamples(10));
             list.DataType(10).Dimensions(3, 1);
         },
         {{uint16, 3, 1, 10}}},
        {"an array of another type of elements",
         [](TagList& list) {
             list.tags.Array("Data", DmType::byte, 20000, NumberedSamples(10));
             list.DataType(10).Dimensions(3, 1);
         },
         {{uint16, 3, 1, 10}}},
        {"an array of too few elements",
         [](TagList& list) {
             list.tags.Array("Data", DmType::uint16, 9999, Bytes(19998));
             list.DataType(10).Dimensions(3, 1);
         },
         {}},
        {"an array of few large elements",
         [](TagList& list) {
             list.tags.StructArray("Data", {DmType::float64, DmType::float64}, 9999, Bytes(159984));
             list.DataType(10).Dimensions(3, 1);
         },
         {}},
        {"a smaller array behind the data",
         [](TagList& list) {
             list.Data(10).tags.Array("Data", DmType::uint16, 9999, Bytes(19998));
             list.DataType(10).Dimensions(3, 1);
         },
         {{uint16, 3, 1, 10}}},
        {"text, however long",
         [](TagList& list) {
             list.tags.String("Data", std::u16string(10000, u'x'));
             list.DataType(10).Dimensions(3, 1);
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
