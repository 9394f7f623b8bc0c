#include "limits/Limits.h"
#include "support/files/DmFile.h"
#include "support/files/Hdf5File.h"
#include "support/files/Hdf5NestedTypes.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr size_t tooDeep = 100000;

/// Groups in each other, of which none is closed.
Bytes OpenGroups(const DmLayout& layout, size_t depth)
{
    DmWriter groups{layout};
    for (size_t i = 0; i < depth; ++i)
    {
        groups.Put(uint8_t{1}).Put(uint8_t{0});
        groups.Word(1).Put(DmTags::groupKind).Put(uint16_t{0});
        if (layout.version == 4)
            groups.Word(0);
    }
    return DmFile{layout}.Content(groups.bytes).Build();
}

TEST(Nesting, OfTagGroupsEndsAtALimit)
{
    for (const uint32_t version : {3U, 4U})
    {
        const FileCost cost = ExpectWithinLimits(OpenGroups({.version = version}, tooDeep),
                                                 "version " + std::to_string(version));
        EXPECT_FALSE(cost.header.frameCount);
    }
}

TEST(Nesting, OfTagGroupsUpToTheLimitNeedsLittleStack)
{
    constexpr size_t nearlyTooDeep = 252;
    const DmLayout layout;
    DmTags tags{layout};
    tags.Image({.dataType = 6, .width = 100, .height = 100, .elementCount = 10000, .samples = Bytes(10000)});
    for (size_t i = 0; i < nearlyTooDeep; ++i)
        tags = DmTags{layout}.Group("", tags);
    EXPECT_EQ(ExpectWithinLimits(DmFile{layout}.Root(tags).Build(), "deep").frame.frameCount, 1U);
}

TEST(Nesting, OfHdfGroupsEndsAtALimit)
{
    std::string path;
    for (size_t depth = 1; depth <= 1000; ++depth)
    {
        path += "/g";
        if (depth != 250 && depth != 1000)
            continue;
        Hdf5File file;
        file.AnyDataSet(path + "/image", H5T_STD_U16LE, {40, 50});
        const FileCost cost = ExpectWithinLimits(file.Build(), std::to_string(depth));
        EXPECT_EQ(cost.header.frameCount.has_value(), depth == 250);
    }
}

TEST(Nesting, OfHdfTypesEndsTheSandboxAtItsLimit)
{
    constexpr size_t half = size_t{96} << 10;
    for (const auto& [what, kind] : nestingKinds)
    {
        Hdf5File file;
        file.DataSet("/image", LongType().id, {32, 32}, {}, {.isWritten = false});
        file.AnyDataSet("/picture image", H5T_STD_U16LE, {40, 50});
        const FileCost cost = ExpectWithinLimits(WithNestedType(file.Build(), kind), what);
        EXPECT_EQ(cost.frame.frameCount, 1U) << what;
        EXPECT_GT(cost.frame.stack, half) << what;
    }
}

TEST(Nesting, OfLatticeSectionsNeedsNoStack)
{
    const std::string text = "# Vorna 1.0\n" + std::string(tooDeep, '{');
    const FileCost cost = ExpectWithinLimits({text.begin(), text.end()}, "sections");
    EXPECT_FALSE(cost.header.frameCount);
}

} // namespace
