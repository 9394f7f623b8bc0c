#include "support/ComApartment.h"
#include "support/FileFacts.h"
#include "support/JpegFile.h"
#include "support/files/Hdf5File.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const char* const used = "[Lumora] HDF: Using embedded jpeg thumbnail";
const char* const damaged = "[Lumora] HDF: Could not read jpeg image";

class HdfThumbnail : public testing::Test
{
    ComApartment apartment;
};

/// A gray block and a red one, side by side.
Bytes TwoBlocks()
{
    return JpegFile(16, 8).Block({100}).Block({76, 85, 255}).Build();
}

Bytes TwoBlockPicture()
{
    Bytes picture;
    for (int row = 0; row < 8; ++row)
    {
        for (int column = 0; column < 16; ++column)
        {
            // 76 + 1.402 * 127 is 254.05; 76 + 0.344 * 43 - 0.714 * 127 is 0.11; 76 - 1.772 * 43 is -0.2.
            const Bytes pixel = column < 8 ? Bytes{100, 100, 100} : Bytes{254, 0, 0};
            picture.insert(picture.end(), pixel.begin(), pixel.end());
        }
    }
    return picture;
}

Hdf5File& WithThumbnail(Hdf5File& file, const std::string& path, const Bytes& jpeg)
{
    return file.DataSet(path, H5T_STD_U8LE, {jpeg.size()}, jpeg);
}

Bytes FileWithThumbnail(const Bytes& jpeg)
{
    Hdf5File file;
    file.AnyDataSet("/image", H5T_STD_U16LE, {40, 50});
    return WithThumbnail(file, "/Thumbnail.jpg", jpeg).Build();
}

TEST_F(HdfThumbnail, IsFrame0)
{
    const Bytes file = FileWithThumbnail(TwoBlocks());
    const FileOpen thumbnail{file};
    ASSERT_TRUE(thumbnail.succeeded);
    EXPECT_THAT(thumbnail.lines, ElementsAre(used));
    const RawImageBase& reader = *thumbnail.image.Reader();
    EXPECT_THAT(reader, HasFacts({FileType::Hdf, PixelType::RGB24, 16, 8, 2}));
    EXPECT_EQ(reader.displayPixels, TwoBlockPicture());

    const FileOpen image{file, readModeFrame, 1};
    ASSERT_TRUE(image.succeeded);
    EXPECT_THAT(image.lines, IsEmpty());
    EXPECT_THAT(*image.image.Reader(), HasFacts({FileType::Hdf, PixelType::UInt16, 50, 40, 2}));
    EXPECT_THAT(image.image.Reader()->displayPixels, SizeIs(40 * 50));
}

TEST_F(HdfThumbnail, IsDecodedWhenOnlyFactsAreWanted)
{
    const FileOpen open{FileWithThumbnail(TwoBlocks()), readModeHeader};
    ASSERT_TRUE(open.succeeded);
    EXPECT_THAT(open.lines, IsEmpty());
    EXPECT_EQ(open.image.Reader()->width, 16U);
    EXPECT_EQ(open.image.Reader()->displayPixels, TwoBlockPicture());
}

TEST_F(HdfThumbnail, IsEnoughForAFile)
{
    Hdf5File file;
    const FileOpen open{WithThumbnail(file, "/THUMBNAIL.jpg", TwoBlocks()).Build()};
    ASSERT_TRUE(open.succeeded);
    EXPECT_THAT(open.lines, ElementsAre(used));
    EXPECT_EQ(open.image.Reader()->frameCount, 1U);
    EXPECT_EQ(open.image.Reader()->displayPixels, TwoBlockPicture());
}

TEST_F(HdfThumbnail, IsWhateverTypeItsBytesAreStoredAs)
{
    Bytes wide;
    for (const uint8_t byte : TwoBlocks())
        wide.insert(wide.end(), {0, byte});
    const FileOpen open{Hdf5File().DataSet("/Thumbnail.jpg", H5T_STD_U16BE, {wide.size() / 2}, wide).Build()};
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.image.Reader()->displayPixels, TwoBlockPicture());
}

TEST_F(HdfThumbnail, IsLeftOutWhenItCannotBeDecoded)
{
    struct Row
    {
        const char* what;
        Bytes jpeg;
    };
    const Bytes good = TwoBlocks();
    const Row rows[] = {
        {"text", {'h', 'e', 'l', 'l', 'o'}},
        {"beginning of a file", {good.begin(), good.begin() + 100}},
        {"no header", {good.begin() + 100, good.end()}},
        {"wide", JpegFile(8200, 8).Build()},
        {"high", JpegFile(8, 8200).Build()},
        {"no width", JpegFile(0, 8).Build()},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.what);
        const FileOpen open{FileWithThumbnail(row.jpeg)};
        ASSERT_TRUE(open.succeeded);
        EXPECT_THAT(open.lines, ElementsAre(damaged));
        EXPECT_EQ(open.image.Reader()->frameCount, 1U);
        EXPECT_EQ(open.image.Reader()->width, 50U);
    }
}

TEST_F(HdfThumbnail, IsLeftOutWhenItHasNoStorageOrMoreThan32MiB)
{
    for (const Hdf5Storage& storage : {Hdf5Storage{}, Hdf5Storage{.isWritten = false}})
    {
        const hsize_t bytes = storage.isWritten ? 0x2000001 : 100;
        const FileOpen open{Hdf5File()
                                .AnyDataSet("/image", H5T_STD_U16LE, {40, 50})
                                .AnyDataSet("/Thumbnail.jpg", H5T_STD_U8LE, {bytes}, storage)
                                .Build(),
                            readModeHeader};
        EXPECT_TRUE(open.succeeded);
        EXPECT_THAT(open.lines, ElementsAre(damaged));
    }
}

TEST_F(HdfThumbnail, MayHave32MiB)
{
    Bytes jpeg = TwoBlocks();
    jpeg.resize(0x2000000);
    const FileOpen open{FileWithThumbnail(jpeg), readModeHeader};
    ASSERT_TRUE(open.succeeded);
    EXPECT_THAT(open.lines, IsEmpty());
    EXPECT_EQ(open.image.Reader()->frameCount, 2U);
}

TEST_F(HdfThumbnail, IsNoFileThatThisReaderWouldBeAskedToDecode)
{
    for (const Bytes& inner : {FileWithThumbnail(TwoBlocks()), Hdf5File().Group("/a").Build()})
        EXPECT_THAT((FileOpen{FileWithThumbnail(inner)}.lines), ElementsAre(damaged));
}

TEST_F(HdfThumbnail, IsTheOneThatWasAskedForWhenThereAreSeveral)
{
    Hdf5File file;
    WithThumbnail(file, "/THUMBNAIL.jpg", JpegFile(8, 8).Block({200}).Build());
    WithThumbnail(file, "/Thumbnail.jpg", TwoBlocks());
    const Bytes bytes = file.Build();
    const FileOpen last{bytes, readModeFrame, 0};
    ASSERT_TRUE(last.succeeded);
    EXPECT_THAT(last.lines, ElementsAre(used));
    EXPECT_EQ(last.image.Reader()->displayPixels, TwoBlockPicture());
    const FileOpen first{bytes, readModeFrame, 1};
    ASSERT_TRUE(first.succeeded);
    EXPECT_THAT(first.lines, ElementsAre(used));
    EXPECT_EQ(first.image.Reader()->width, 8U);
    EXPECT_EQ(first.image.Reader()->displayPixels, Bytes(8 * 8 * 3, 200));
}

TEST_F(HdfThumbnail, IsNoneInAnyOtherPlace)
{
    Hdf5File file;
    WithThumbnail(file, "/images/Thumbnail.jpg", TwoBlocks());
    const FileOpen open{file.Build()};
    EXPECT_FALSE(open.succeeded);
    EXPECT_THAT(open.lines, ElementsAre("[Lumora] HDF: No images found"));
}

} // namespace
