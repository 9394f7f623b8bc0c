#include "support/files/DmSearch.h"

#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;

// Images are found in the list of labels, unsigned values and large arrays. The tree of the tags does not
// count, only their order.

namespace {

constexpr auto uint16 = PixelType::UInt16;

TYPED_TEST(DmReader, TakesAnUnsignedValueBehindItsLabelAsTheTypeOfTheSamples)
{
    const SearchRow rows[] = {
        {"a signed value", [](TagList& list) { list.Data(10).Signed("DataType", 10).Dimensions(3, 1); }, {}},
        {"a value of 16 bits",
         [](TagList& list) {
             list.Data(10).tags.Value("DataType", DmType::uint16, {10, 0});
             list.Dimensions(3, 1);
         },
         {}},
        {"a value of 64 bits",
         [](TagList& list) {
             list.Data(10).tags.Value("DataType", DmType::uint64, {10, 0, 0, 0, 0, 0, 0, 0});
             list.Dimensions(3, 1);
         },
         {}},
        {"text", [](TagList& list) { list.Data(10).Text("DataType").Dimensions(3, 1); }, {}},
        {"a group that begins with a value",
         [](TagList& list) {
             list.Data(10).Group("DataType", list.NewGroup().UInt32("", 10)).Dimensions(3, 1);
         },
         {{uint16, 3, 1, 10}}},
        {"a group that begins with a labelled value",
         [](TagList& list) {
             list.Data(10).Group("DataType", list.NewGroup().UInt32("a", 10)).Dimensions(3, 1);
         },
         {}},
        {"a large array before the value",
         [](TagList& list) {
             list.Data(10).tags.Array("DataType", DmType::uint16, 10000, NumberedSamples(50));
             list.Unsigned("", 10).Dimensions(3, 1);
         },
         {}},
        {"a signed value before an unsigned one, of which only the latter is kept",
         [](TagList& list) { list.Data(10).Signed("DataType", 1).Unsigned("", 10).Dimensions(3, 1); },
         {{uint16, 3, 1, 10}}},
        {"two types, of which the second counts",
         [](TagList& list) { list.Data(10).DataType(1).DataType(10).Dimensions(3, 1); },
         {{uint16, 3, 1, 10}}},
        {"a label without a value does not undo the type",
         [](TagList& list) { list.Data(10).DataType(10).Text("DataType").Dimensions(3, 1); },
         {{uint16, 3, 1, 10}}},
        {"a label at the end", [](TagList& list) { list.Data(10).Dimensions(3, 1).Text("DataType"); }, {}},
        {"an unknown type discards the data",
         [](TagList& list) { list.Data(10).DataType(3).DataType(10).Dimensions(3, 1); },
         {}},
        {"an unknown type discards the type and the data",
         [](TagList& list) { list.Data(10).DataType(10).DataType(0).Dimensions(3, 1); },
         {}},
        {"an unknown type discards the dimensions",
         [](TagList& list) { list.Data(10).Dimensions(3, 1).DataType(3).Data(50).DataType(10); },
         {}},
        {"the image after one of an unknown type",
         [](TagList& list) {
             list.Data(10).DataType(3).Dimensions(9, 9).Data(50).DataType(10).Dimensions(3, 1);
         },
         {{uint16, 3, 1, 50}}},
    };
    for (const SearchRow& row : rows)
        ExpectFound<TypeParam>(this->layout, row);
}

const SearchRow dimensionRows[] = {
    {"one", [](TagList& list) { list.Data(10).DataType(10).Dimensions(3).Unsigned("a", 1); }, {}},
    {"one at the end", [](TagList& list) { list.Data(10).DataType(10).Dimensions(3); }, {}},
    {"none", [](TagList& list) { list.Data(10).DataType(10).Dimensions(); }, {}},
    {"one, and a value behind the group",
     [](TagList& list) { list.Data(10).DataType(10).Dimensions(3).Unsigned("", 1); },
     {{uint16, 3, 1, 10}}},
    {"values without a group",
     [](TagList& list) { list.Data(10).DataType(10).Unsigned("Dimensions", 3).Unsigned("", 1); },
     {{uint16, 3, 1, 10}}},
    {"three",
     [](TagList& list) { list.Data(10).DataType(10).Dimensions(3, 1, 2); },
     {{uint16, 3, 1, 10}, {uint16, 3, 1, 11}}},
    {"two, and a value behind the group",
     [](TagList& list) { list.Data(10).DataType(10).Dimensions(3, 1).Unsigned("", 2); },
     {{uint16, 3, 1, 10}, {uint16, 3, 1, 11}}},
    {"two, and a labelled value behind the group",
     [](TagList& list) { list.Data(10).DataType(10).Dimensions(3, 1).Unsigned("PixelDepth", 2); },
     {{uint16, 3, 1, 10}}},
    {"four",
     [](TagList& list) { list.Data(10).DataType(10).Dimensions(3, 1, 2, 5); },
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
         list.Data(10).DataType(10).Dimensions(3, 1);
         list.tags.Array("", DmType::uint16, 10000, NumberedSamples(50));
         list.Unsigned("", 2);
     },
     {{uint16, 3, 1, 10}}},
    {"dimensions twice, of which the latter count",
     [](TagList& list) { list.Data(10).Dimensions(9, 9, 2).Dimensions(3, 1).DataType(10); },
     {{uint16, 3, 1, 10}}},
    {"a single dimension does not undo two",
     [](TagList& list) { list.Data(10).Dimensions(3, 1, 2).Dimensions(9).Text("Name").DataType(10); },
     {{uint16, 3, 1, 10}, {uint16, 3, 1, 11}}},
    {"no frames", [](TagList& list) { list.Data(10).DataType(10).Dimensions(3, 1, 0); }, {}},
    {"an image of no frames is done with all the same",
     [](TagList& list) { list.Data(10).DataType(10).Dimensions(3, 1, 0).DataType(10).Dimensions(3, 1); },
     {}},
};

TYPED_TEST(DmReader, TakesTwoOrThreeUnsignedValuesBehindTheirLabelAsTheDimensions)
{
    for (const SearchRow& row : dimensionRows)
        ExpectFound<TypeParam>(this->layout, row);
}

} // namespace
