#include "support/ComApartment.h"
#include "support/FileRead.h"
#include "support/Hdf5File.h"
#include "support/SmallStack.h"

#include "formats/HdfObject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<uint8_t>;

namespace {

constexpr size_t largestType = 60000;

/// A type whose description in the file has about 60000 bytes, to be written over.
HdfDataType LongType()
{
    // A member has 24 bytes with its name, 8 for how its type begins, and 4 for the text's size.
    constexpr size_t members = 1000;
    const hid_t type = H5Tcreate(H5T_COMPOUND, members);
    for (size_t i = 0; i < members; ++i)
        H5Tinsert(type, (std::string(20, 'n') + std::to_string(i)).c_str(), i, H5T_STD_U8LE);
    return HdfDataType{type};
}

/// Writes a type over the long type's description: kinds of types in each other, as deep as they can be.
Bytes WithNestedType(Bytes file, const Bytes& kind)
{
    const Bytes longType = {0x16, 0xE8, 0x03, 0x00, 0xE8, 0x03, 0x00, 0x00};
    const auto place = std::search(file.begin(), file.end(), longType.begin(), longType.end());
    EXPECT_NE(place, file.end());
    const size_t levels = std::min(largestType, static_cast<size_t>(file.end() - place)) / kind.size() - 1;
    for (size_t level = 0; level < levels; ++level)
        std::ranges::copy(kind, place + static_cast<ptrdiff_t>(level * kind.size()));
    const Bytes innermost = {0x10, 8, 0, 0, 1, 0, 0, 0, 0, 0, 8, 0};
    std::ranges::copy(innermost, place + static_cast<ptrdiff_t>(levels * kind.size()));
    return file;
}

/// Class, version and size, and what the class has of its own before it goes on with the inner type.
const std::vector<std::pair<std::string, Bytes>> nestingKinds = {
    {"variable lengths", {0x19, 0, 0, 0, 16, 0, 0, 0}},
    {"enumerations", {0x18, 0, 0, 0, 1, 0, 0, 0}},
    {"compounds", {0x36, 1, 0, 0, 1, 0, 0, 0, 0, 0}},
    {"arrays", {0x3A, 0, 0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 0}},
};

/// What the file's one image gives on a thread with little stack, and what is told.
void ExpectOneImage(const Bytes& file, const std::vector<std::string>& lines, const std::string& what)
{
    constexpr size_t smallStack = 0x40000;
    RunOnSmallStack(smallStack, [&] {
        const ComApartment apartment;
        const FileOpen open{file};
        EXPECT_TRUE(open.succeeded) << what;
        EXPECT_EQ(open.lines, lines) << what;
        if (open.succeeded)
            EXPECT_EQ(open.image.Reader()->frameCount, 1U) << what;
    });
}

class NestedTypes : public testing::TestWithParam<std::pair<std::string, Bytes>>
{
protected:
    static void ExpectOutcome(Hdf5File& file, const std::vector<std::string>& lines = {})
    {
        const auto& [what, kind] = GetParam();
        file.AnyDataSet("/picture image", H5T_STD_U16LE, {40, 50});
        ExpectOneImage(WithNestedType(file.Build(), kind), lines, what);
    }
};

TEST_P(NestedTypes, OfADataset)
{
    Hdf5File file;
    file.DataSet("/image", LongType().id, {32, 32}, {}, {.isWritten = false});
    ExpectOutcome(file);
}

TEST_P(NestedTypes, OfTheAttributesOfAnImage)
{
    for (const char* name : {"CLASS", "INTERLACE_MODE", "PALETTE"})
    {
        Hdf5File file;
        file.AnyDataSet("/other", H5T_STD_U16LE, {40, 50}).Text("/other", "CLASS", "IMAGE");
        file.AnyDataSet("/image", H5T_STD_U8LE, {40, 50}).Attribute("/image", name, LongType().id);
        SCOPED_TRACE(name);
        const auto& [what, kind] = GetParam();
        const Bytes bytes = WithNestedType(file.Build(), kind);
        RunOnSmallStack(0x40000, [&] { FileOpen{bytes}; });
    }
}

TEST_P(NestedTypes, OfTexts)
{
    for (const char* name : {"/Version", "/Info"})
    {
        Hdf5File file;
        file.DataSet(name, LongType().id, {1}, {}, {.isWritten = false});
        ExpectOutcome(file);
    }
}

TEST_P(NestedTypes, OfAThumbnail)
{
    Hdf5File file;
    file.DataSet("/Thumbnail.jpg", LongType().id, {1000}, Bytes(1000000));
    ExpectOutcome(file, {"[Lumora] HDF: Could not read jpeg image"});
}

INSTANTIATE_TEST_SUITE_P(Hdf, NestedTypes, testing::ValuesIn(nestingKinds));

TEST(HdfReader, FollowsGroupsOnASmallStack)
{
    Hdf5File file;
    std::string path;
    for (int i = 0; i < 300; ++i)
        path += "/group";
    file.Group(path).AnyDataSet("/group/image", H5T_STD_U16LE, {40, 50});
    ExpectOneImage(file.Build(), {}, "groups");
}

} // namespace
