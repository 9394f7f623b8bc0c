#include "formats/hdf/inside/HdfObject.h"
#include "support/FileFacts.h"
#include "support/files/Hdf5File.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const Lines noImages = {"[Lumora] HDF: No images found"};

/// The facts of a file with one dataset that says that it is an image, and perhaps how it is interlaced.
FileOpen OpenImage(hid_t type, const std::vector<hsize_t>& sides, const char* interlace)
{
    Hdf5File file;
    file.AnyDataSet("/picture", type, sides).Text("/picture", "CLASS", "IMAGE");
    if (interlace)
        file.Text("/picture", "INTERLACE_MODE", interlace);
    return FileOpen{file.Build(), readModeHeader};
}

struct ListedRow
{
    const char* what;
    hid_t type;
    std::vector<hsize_t> sides;
    const char* interlace;
    PixelType pixelType;
    uint32_t frames;
};

TEST(HdfReader, ListsImagesByTheirTypeAndLayout)
{
    const char* const pixels = "INTERLACE_PIXEL";
    const char* const planes = "INTERLACE_PLANE";
    const ListedRow rows[] = {
        {"plain", H5T_STD_U16LE, {40, 50}, nullptr, PixelType::UInt16, 1},
        {"one plane", H5T_STD_U8LE, {40, 50, 1}, nullptr, PixelType::UInt8, 1},
        {"empty interlace", H5T_STD_U16LE, {40, 50}, "", PixelType::UInt16, 1},
        {"pixel interlace of a plane", H5T_STD_U16LE, {40, 50}, pixels, PixelType::UInt16, 1},
        {"RGB pixels", H5T_STD_U8LE, {40, 50, 3}, pixels, PixelType::RGB24, 1},
        {"RGB planes", H5T_STD_U8LE, {3, 40, 50}, planes, PixelType::RGB24, 1},
        {"four planes of bytes", H5T_STD_U8LE, {4, 40, 50}, planes, PixelType::UInt8, 4},
        {"three planes of shorts", H5T_STD_U16LE, {3, 40, 50}, planes, PixelType::UInt16, 3},
    };
    for (const ListedRow& row : rows)
    {
        SCOPED_TRACE(row.what);
        const FileOpen open = OpenImage(row.type, row.sides, row.interlace);
        ASSERT_TRUE(open.succeeded);
        EXPECT_THAT(open.lines, IsEmpty());
        EXPECT_THAT(*open.image.Reader(), HasFacts({FileType::Hdf, row.pixelType, 50, 40, row.frames}));
        EXPECT_THAT(open.image.Reader()->displayPixels, IsEmpty());
    }
}

struct SkippedRow
{
    const char* what;
    hid_t type;
    std::vector<hsize_t> sides;
    const char* interlace;
    /// Why it is skipped, where that is said.
    Lines lines;
};

TEST(HdfReader, SkipsImagesOfOtherLayouts)
{
    const std::string scan = "[Lumora] HDF: Skipped image with not supported scan-line interlacing";
    const std::string unknown = "[Lumora] HDF: Skipped image with unknown interlace format";
    const std::string series = "[Lumora] HDF: Skipped not supported image series";
    const SkippedRow rows[] = {
        {"three bytes without a word on the layout", H5T_STD_U8LE, {40, 50, 3}, nullptr, {series}},
        {"three shorts to the pixel", H5T_STD_U16LE, {40, 50, 3}, "INTERLACE_PIXEL", {series}},
        {"lines", H5T_STD_U8LE, {40, 3, 50}, "INTERLACE_LINE", {scan}},
        {"lines of a plane", H5T_STD_U8LE, {40, 50}, "INTERLACE_LINE", {scan}},
        {"unknown", H5T_STD_U8LE, {40, 50}, "INTERLACE_TILE", {unknown}},
        {"longer than known", H5T_STD_U8LE, {40, 50}, "INTERLACE_PIXELS", {unknown}},
        {"other letter case", H5T_STD_U8LE, {40, 50}, "interlace_pixel", {unknown}},
        {"planes of a plane", H5T_STD_U8LE, {40, 50}, "INTERLACE_PLANE", {}},
        {"one dimension", H5T_STD_U16LE, {4000}, nullptr, {}},
        {"four dimensions", H5T_STD_U16LE, {40, 40, 2, 2}, nullptr, {}},
    };
    for (const SkippedRow& row : rows)
    {
        SCOPED_TRACE(row.what);
        Lines lines = row.lines;
        lines.push_back(noImages[0]);
        const FileOpen open = OpenImage(row.type, row.sides, row.interlace);
        EXPECT_FALSE(open.succeeded);
        EXPECT_EQ(open.lines, lines);
    }
}

struct TypeRow
{
    const char* what;
    Bytes file;
    PixelType pixelType;
};

/// A file of one element type each. The types are closed before the library ends, which reading does.
std::vector<TypeRow> FilesOfElementTypes()
{
    const HdfDataType enumeration{H5Tenum_create(H5T_STD_U16LE)};
    const uint16_t one = 1;
    H5Tenum_insert(enumeration.id, "one", &one);
    const HdfDataType compound{H5Tcreate(H5T_COMPOUND, 2)};
    H5Tinsert(compound.id, "value", 0, H5T_STD_U16LE);
    const HdfDataType text{H5Tcopy(H5T_C_S1)};
    H5Tset_size(text.id, 2);
    const hsize_t two = 2;
    const HdfDataType pair{H5Tarray_create2(H5T_STD_U16LE, 1, &two)};
    const auto of = [](hid_t type) { return Hdf5File().AnyDataSet("/image", type, {32, 32}).Build(); };
    return {
        {"U8", of(H5T_STD_U8LE), PixelType::UInt8},
        {"U16", of(H5T_STD_U16LE), PixelType::UInt16},
        {"U16 big-endian", of(H5T_STD_U16BE), PixelType::UInt16},
        {"U32", of(H5T_STD_U32LE), PixelType::UInt32},
        {"U32 big-endian", of(H5T_STD_U32BE), PixelType::UInt32},
        {"I8", of(H5T_STD_I8LE), PixelType::Int8},
        {"I16", of(H5T_STD_I16LE), PixelType::Int16},
        {"I16 big-endian", of(H5T_STD_I16BE), PixelType::Int16},
        {"I32", of(H5T_STD_I32LE), PixelType::Int32},
        {"I32 big-endian", of(H5T_STD_I32BE), PixelType::Int32},
        {"F32", of(H5T_IEEE_F32LE), PixelType::Float32},
        {"F32 big-endian", of(H5T_IEEE_F32BE), PixelType::Float32},
        {"F64", of(H5T_IEEE_F64LE), PixelType::Double64},
        {"U64", of(H5T_STD_U64LE), PixelType::Unknown},
        {"I64", of(H5T_STD_I64BE), PixelType::Unknown},
        {"B16", of(H5T_STD_B16LE), PixelType::Unknown},
        {"enumeration", of(enumeration.id), PixelType::Unknown},
        {"compound", of(compound.id), PixelType::Unknown},
        {"text", of(text.id), PixelType::Unknown},
        {"array", of(pair.id), PixelType::Unknown},
        {"reference", of(H5T_STD_REF_OBJ), PixelType::Unknown},
    };
}

TEST(HdfReader, ListsEveryElementTypeThatAPictureHas)
{
    for (const TypeRow& row : FilesOfElementTypes())
    {
        SCOPED_TRACE(row.what);
        const FileOpen open{row.file, readModeHeader};
        EXPECT_EQ(open.succeeded, row.pixelType != PixelType::Unknown);
        if (open.succeeded)
            EXPECT_EQ(open.image.Reader()->pixelType, row.pixelType);
        else
            EXPECT_EQ(open.lines, noImages);
    }
}

TEST(HdfReader, ListsSidesFrom32To8192)
{
    struct SidesRow
    {
        hsize_t width;
        hsize_t height;
        bool isListed;
    };
    for (const SidesRow& row :
         {SidesRow{31, 100, false}, SidesRow{100, 31, false}, SidesRow{32, 8192, true},
          SidesRow{8192, 32, true}, SidesRow{32, 8193, false}, SidesRow{8193, 32, false}})
    {
        SCOPED_TRACE(testing::Message() << row.width << " x " << row.height);
        const FileOpen open{Hdf5File().AnyDataSet("/image", H5T_STD_U8LE, {row.height, row.width}).Build(),
                            readModeHeader};
        EXPECT_EQ(open.succeeded, row.isListed);
        EXPECT_EQ(open.lines, row.isListed ? Lines{} : noImages);
        if (open.succeeded)
        {
            EXPECT_EQ(open.image.Reader()->width, row.width);
            EXPECT_EQ(open.image.Reader()->height, row.height);
        }
    }
}

TEST(HdfReader, TakesDatasetsForImagesByTheirClassOrByTheirPath)
{
    struct PathRow
    {
        const char* path;
        const char* imageClass;
        bool isListed;
    };
    const PathRow rows[] = {
        {"/picture", nullptr, false},    {"/picture", "IMAGE", true},      {"/picture", "TABLE", false},
        {"/picture", "PALETTE", false},  {"/an IMAGE too", nullptr, true}, {"/Images/a/b", nullptr, true},
        {"/a/b/myImAgE", nullptr, true}, {"/image", "TABLE", true},        {"/ima/ge", nullptr, false},
    };
    for (const PathRow& row : rows)
    {
        SCOPED_TRACE(row.path);
        Hdf5File file;
        file.AnyDataSet(row.path, H5T_STD_U8LE, {40, 50});
        if (row.imageClass)
            file.Text(row.path, "CLASS", row.imageClass);
        const FileOpen open{file.Build(), readModeHeader};
        EXPECT_EQ(open.succeeded, row.isListed);
        EXPECT_EQ(open.lines, row.isListed ? Lines{} : noImages);
    }
}

TEST(HdfReader, TrustsNoAttributeOfAnImage)
{
    // Neither of them is a text of a fixed length that the library's own functions could read safely.
    Hdf5File file;
    file.AnyDataSet("/picture", H5T_STD_U8LE, {40, 50}).VariableText("/picture", "CLASS", "IMAGE");
    file.AnyDataSet("/image a", H5T_STD_U8LE, {40, 50}).VariableText("/image a", "INTERLACE_MODE", "");
    const std::string longText(5000, 'x');
    file.AnyDataSet("/image b", H5T_STD_U8LE, {40, 50}).Text("/image b", "INTERLACE_MODE", longText);
    file.AnyDataSet("/other", H5T_STD_U8LE, {40, 50}).Text("/other", "CLASS", longText);
    const FileOpen open{file.Build(), readModeHeader};
    EXPECT_FALSE(open.succeeded);
    EXPECT_EQ(open.lines, noImages);
}

TEST(HdfReader, SkipsImagesWithPalettes)
{
    for (const hsize_t count : {1U, 2U})
    {
        Hdf5File file;
        file.AnyDataSet("/image", H5T_STD_U8LE, {40, 50}).Palettes("/image", count);
        const FileOpen open{file.Build(), readModeHeader};
        EXPECT_FALSE(open.succeeded);
        EXPECT_EQ(open.lines, (Lines{"[Lumora] HDF: Skipped image with color palette", noImages[0]}));
    }
    // The interlace is looked at first, and the size last.
    Hdf5File file;
    file.AnyDataSet("/image", H5T_STD_U8LE, {40, 50}).Palettes("/image", 1);
    file.Text("/image", "INTERLACE_MODE", "INTERLACE_LINE");
    file.AnyDataSet("/image of 3 rows", H5T_STD_U8LE, {3, 50}).Palettes("/image of 3 rows", 1);
    const FileOpen open{file.Build(), readModeHeader};
    EXPECT_EQ(open.lines, (Lines{"[Lumora] HDF: Skipped image with not supported scan-line interlacing",
                                 "[Lumora] HDF: Skipped image with color palette", noImages[0]}));
}

TEST(HdfReader, TakesThreeDimensionsForASeriesOnlyWhenTheDatasetIsCalledData)
{
    struct NameRow
    {
        const char* path;
        bool isSeries;
    };
    for (const NameRow& row : {NameRow{"/Image/Data", true}, NameRow{"/Image/data", false},
                               NameRow{"/Image/Data2", false}, NameRow{"/Data/Image/picture", false}})
    {
        SCOPED_TRACE(row.path);
        const FileOpen open{Hdf5File().AnyDataSet(row.path, H5T_STD_U16LE, {40, 50, 10}).Build(),
                            readModeHeader};
        EXPECT_EQ(open.succeeded, row.isSeries);
        if (row.isSeries)
            EXPECT_EQ(open.image.Reader()->frameCount, 10U);
        else
            EXPECT_EQ(open.lines, (Lines{"[Lumora] HDF: Skipped not supported image series", noImages[0]}));
    }
}

TEST(HdfReader, SkipsDatasetsWhoseStorageIsNotAWholeNumberOfFrames)
{
    const std::string message = "[Lumora] HDF: Skipped image series with invalid data size";
    const FileOpen compressed{
        Hdf5File()
            .AnyDataSet("/image", H5T_STD_U16LE, {40, 50}, {.chunk = {40, 50}, .isCompressed = true})
            .Build(),
        readModeHeader};
    EXPECT_EQ(compressed.lines, (Lines{message, noImages[0]}));
    // 64 x 64 samples are kept of the 40 x 50.
    const FileOpen uneven{
        Hdf5File().AnyDataSet("/image", H5T_STD_U16LE, {40, 50}, {.chunk = {32, 32}}).Build(),
        readModeHeader};
    EXPECT_EQ(uneven.lines, (Lines{message, noImages[0]}));
    const FileOpen even{Hdf5File().AnyDataSet("/image", H5T_STD_U16LE, {40, 50}, {.chunk = {8, 10}}).Build(),
                        readModeHeader};
    EXPECT_TRUE(even.succeeded);
    // 64 x 96 samples are kept of the 48 x 64, two frames for one.
    const FileOpen doubled{
        Hdf5File().AnyDataSet("/image", H5T_STD_U16LE, {48, 64}, {.chunk = {32, 48}}).Build(),
        readModeHeader};
    EXPECT_EQ(doubled.lines, (Lines{"[Lumora] HDF: Skipped not supported image series", noImages[0]}));
}

TEST(HdfReader, PassesOverDatasetsWithoutStorage)
{
    const FileOpen open{
        Hdf5File().AnyDataSet("/image", H5T_STD_U16LE, {40, 50}, {.isWritten = false}).Build(),
        readModeHeader};
    EXPECT_EQ(open.lines, noImages);
}

TEST(HdfReader, WalksAGroupOnceHoweverManyLinksLeadToIt)
{
    Hdf5File file;
    file.AnyDataSet("/a/images/Data", H5T_STD_U16LE, {40, 50, 4});
    file.HardLink("/a", "/b").HardLink("/a", "/a/images/back").HardLink("/a/images", "/images");
    const FileOpen open{file.Build(), readModeHeader};
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.image.Reader()->frameCount, 4U);
}

TEST(HdfReader, FindsADatasetByEachOfItsHardLinksAndByNoOther)
{
    Hdf5File file;
    file.AnyDataSet("/image", H5T_STD_U16LE, {40, 50});
    file.HardLink("/image", "/image too").HardLink("/image", "/images/a");
    file.SoftLink("/image", "/soft image")
        .SoftLink("/images", "/soft images")
        .SoftLink("/none", "/image none");
    const FileOpen open{file.Build(), readModeHeader};
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.image.Reader()->frameCount, 3U);
}

TEST(HdfReader, WalksTheRootAgainWhereAGroupLeadsBackToIt)
{
    Hdf5File file;
    file.AnyDataSet("/image", H5T_STD_U16LE, {40, 50}).HardLink("/", "/root");
    const FileOpen open{file.Build(), readModeHeader};
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.image.Reader()->frameCount, 2U);
}

TEST(HdfReader, SaysOfEachImageInTheOrderOfTheNamesWhyItIsSkipped)
{
    Hdf5File file;
    file.AnyDataSet("/z image", H5T_STD_U8LE, {40, 50}).Text("/z image", "INTERLACE_MODE", "INTERLACE_LINE");
    file.AnyDataSet("/A/image", H5T_STD_U16LE, {40, 50, 3});
    file.AnyDataSet("/Thumbnail.jpg", H5T_STD_U8LE, {3});
    file.AnyDataSet("/m image", H5T_STD_U8LE, {40, 50}).Palettes("/m image", 1);
    const FileOpen open{file.Build(), readModeHeader};
    EXPECT_EQ(
        open.lines,
        (Lines{"[Lumora] HDF: Skipped not supported image series", "[Lumora] HDF: Could not read jpeg image",
               "[Lumora] HDF: Skipped image with color palette",
               "[Lumora] HDF: Skipped image with not supported scan-line interlacing", noImages[0]}));
}

TEST(HdfReader, FindsAtMost250Frames)
{
    Hdf5File file;
    for (int i = 0; i < 300; ++i)
        file.AnyDataSet("/images/" + std::to_string(i), H5T_STD_U8LE, {32, 32});
    const Bytes bytes = file.Build();
    const FileOpen first{bytes, readModeHeader};
    ASSERT_TRUE(first.succeeded);
    EXPECT_EQ(first.image.Reader()->frameCount, 250U);
    EXPECT_THAT(first.lines, ElementsAre("[Lumora] HDF: Reduced images to 250 (found: 300)"));
    const FileOpen last{bytes, readModeHeader, 249};
    EXPECT_TRUE(last.succeeded);
    EXPECT_THAT(last.lines, IsEmpty());
    const FileOpen beyond{bytes, readModeHeader, 250};
    EXPECT_FALSE(beyond.succeeded);
    EXPECT_THAT(beyond.lines, ElementsAre("[Lumora] HDF: Frame index is out of range"));
}

} // namespace
