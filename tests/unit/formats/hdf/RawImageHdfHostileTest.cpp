#include "support/ComApartment.h"
#include "support/files/Hdf5File.h"
#include "support/files/Hdf5NestedTypes.h"
#include "support/gray/SmallStack.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;

namespace {

constexpr size_t smallStack = 0x40000;

/// What the file's one image gives on a thread with little stack, and what is told.
void ExpectOneImage(const Bytes& file, const Lines& lines, const std::string& what)
{
    RunOnSmallStack(smallStack, [&] {
        const ComApartment apartment;
        const FileOpen open{file};
        EXPECT_TRUE(open.succeeded) << what;
        EXPECT_EQ(open.lines, lines) << what;
        if (open.succeeded)
        {
            EXPECT_EQ(open.image.Reader()->frameCount, 1U) << what;
        }
    });
}

class NestedTypes : public testing::TestWithParam<std::pair<std::string, Bytes>>
{
protected:
    static void ExpectOutcome(Hdf5File& file, const Lines& lines = {})
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
        RunOnSmallStack(smallStack, [&] { FileOpen{bytes}; });
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
    file.DataSet("/Thumbnail.jpg", LongType().id, {1000}, Bytes(800000));
    ExpectOutcome(file, {"[Lumora] HDF: Could not read jpeg image"});
}

INSTANTIATE_TEST_SUITE_P(Hdf, NestedTypes, testing::ValuesIn(nestingKinds));

/// Datasets whose types nest too deep, and behind them, by name, a picture.
Bytes PictureBehindNestedTypes(int count)
{
    Hdf5File file;
    for (int i = 0; i < count; ++i)
        file.DataSet("/image " + std::to_string(100 + i), LongType().id, {32, 32}, {}, {.isWritten = false});
    Bytes bytes = file.AnyDataSet("/picture image", H5T_STD_U16LE, {40, 50}).Build();
    for (int i = 0; i < count; ++i)
        bytes = WithNestedType(bytes, nestingKinds.front().second);
    return bytes;
}

TEST(HdfReader, PassesOverSixteenDatasetsThatEndTheSandbox)
{
    ExpectOneImage(PictureBehindNestedTypes(1), {}, "one");
    ExpectOneImage(PictureBehindNestedTypes(16), {}, "sixteen");
    const FileOpen open{PictureBehindNestedTypes(17)};
    EXPECT_FALSE(open.succeeded);
    EXPECT_THAT(open.lines, ElementsAre("[Lumora] HDF: No images found"));
}

TEST(HdfReader, ReadsFramesAndTextsAfterTheSandboxHasEnded)
{
    Hdf5File file;
    file.DataSet("/z image", LongType().id, {32, 32}, {}, {.isWritten = false});
    file.AnyDataSet("/a image", H5T_STD_U16LE, {40, 50});
    file.Strings("/Version", {"\"format\": \"F\",\n\"version\": \"1\",\n"});
    const FileOpen open{WithNestedType(file.Build(), nestingKinds.front().second)};
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.image.Reader()->formatDetails, L"Data version: F 1");
    EXPECT_EQ(open.image.Reader()->displayPixels.size(), 2000U);
}

/// Makes the file's last node of an index lie within itself. `childOffset` is where its first child's address
/// is.
Bytes WithNodeWithinItself(Bytes file, size_t childOffset)
{
    const Bytes signature = {'T', 'R', 'E', 'E'};
    const auto node = std::find_end(file.begin(), file.end(), signature.begin(), signature.end());
    EXPECT_NE(node, file.end());
    const auto address = static_cast<uint64_t>(node - file.begin());
    constexpr ptrdiff_t levelOffset = 5;
    node[levelOffset] = 1;
    for (size_t i = 0; i < sizeof(address); ++i)
        node[static_cast<ptrdiff_t>(childOffset + i)] = static_cast<uint8_t>(address >> (8 * i));
    return file;
}

TEST(HdfReader, GivesUpAGroupWhoseIndexLiesWithinItself)
{
    // Signature, kind, level, count and two neighbours, then a key.
    constexpr size_t childOffset = 24 + 8;
    Hdf5File file;
    file.AnyDataSet("/image", H5T_STD_U16LE, {40, 50});
    const Bytes bytes = WithNodeWithinItself(file.Build(), childOffset);
    RunOnSmallStack(smallStack, [&] {
        const FileOpen open{bytes};
        EXPECT_FALSE(open.succeeded);
        EXPECT_THAT(open.lines, ElementsAre("[Lumora] HDF: No images found"));
    });
}

TEST(HdfReader, GivesUpADatasetWhoseIndexLiesWithinItself)
{
    // A key is the chunk's size, its filters and its place in two dimensions and within a sample.
    constexpr size_t childOffset = 24 + 8 + 3 * 8;
    Hdf5File file;
    file.AnyDataSet("/image", H5T_STD_U16LE, {40, 50}, {.chunk = {40, 50}});
    const Bytes bytes = WithNodeWithinItself(file.Build(), childOffset);
    RunOnSmallStack(smallStack, [&] { EXPECT_FALSE(FileOpen{bytes}.succeeded); });
}

void PutNumber(Bytes& file, uint64_t place, uint64_t number)
{
    for (size_t i = 0; i < sizeof(number); ++i)
        file.at(static_cast<size_t>(place) + i) = static_cast<uint8_t>(number >> (8 * i));
}

/// A file with one image, whose heap of names has its first free place there and says that the next one is
/// there, too.
Bytes WithFreePlace(uint64_t first)
{
    constexpr ptrdiff_t freeOffset = 16;
    constexpr size_t addressOffset = 24;
    Bytes file = Hdf5File().AnyDataSet("/image", H5T_STD_U16LE, {40, 50}).Build();
    const Bytes signature = {'H', 'E', 'A', 'P'};
    const auto heap = static_cast<size_t>(
        std::search(file.begin(), file.end(), signature.begin(), signature.end()) - file.begin());
    const uint64_t names = file.at(heap + addressOffset) | uint64_t{file.at(heap + addressOffset + 1)} << 8;
    PutNumber(file, heap + freeOffset, first);
    constexpr uint64_t firstAfterTheName = 16;
    if (first == firstAfterTheName)
    {
        PutNumber(file, names + first, first);
        PutNumber(file, names + first + 8, 16);
    }
    return file;
}

TEST(HdfReader, GivesUpAGroupWhoseFreePlacesForNamesHaveNoEndOrLieOutside)
{
    // The heap has 88 bytes for names, and a free place has 16 bytes at least.
    for (const uint64_t first : {uint64_t{16}, uint64_t{73}, uint64_t{88}, ~uint64_t{0}, ~uint64_t{15}})
    {
        const FileOpen open{WithFreePlace(first)};
        EXPECT_FALSE(open.succeeded) << first;
        EXPECT_THAT(open.lines, ElementsAre("[Lumora] HDF: No images found")) << first;
    }
    const FileOpen none{WithFreePlace(1)};
    EXPECT_TRUE(none.succeeded) << "one that says that there is none";
}

TEST(HdfReader, UnpacksNoMoreThanAFileCanNeed)
{
    // 256 MiB of zeros.
    Bytes packed(300000);
    const Bytes zeros(0x10000000);
    auto packedBytes = static_cast<uLongf>(packed.size());
    ASSERT_EQ(compress(packed.data(), &packedBytes, zeros.data(), static_cast<uLong>(zeros.size())), Z_OK);
    packed.resize(packedBytes);
    Hdf5File file;
    file.AnyDataSet("/image", H5T_STD_U16LE, {40, 50});
    file.DataSet("/Thumbnail.jpg", H5T_STD_U8LE, {1000}, {},
                 {.chunk = {1000}, .isCompressed = true, .isWritten = false});
    file.Chunk("/Thumbnail.jpg", packed);
    ExpectOneImage(file.Build(), {"[Lumora] HDF: Could not read jpeg image"}, "zeros");
}

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
