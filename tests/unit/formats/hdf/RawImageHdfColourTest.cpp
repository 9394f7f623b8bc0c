#include "support/FileFacts.h"
#include "support/files/Hdf5File.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::IsEmpty;

namespace {

constexpr size_t width = 40;
constexpr size_t height = 32;

/// Three different bytes to every pixel, row by row.
Bytes ColourPicture()
{
    Bytes picture;
    for (size_t pixel = 0; pixel < width * height; ++pixel)
    {
        picture.push_back(static_cast<uint8_t>(pixel));
        picture.push_back(static_cast<uint8_t>(pixel / 7));
        picture.push_back(static_cast<uint8_t>(255 - pixel));
    }
    return picture;
}

Bytes Planes(const Bytes& picture)
{
    Bytes planes;
    for (size_t colour = 0; colour < 3; ++colour)
    {
        for (size_t pixel = 0; pixel < width * height; ++pixel)
            planes.push_back(picture[3 * pixel + colour]);
    }
    return planes;
}

Hdf5File& WithColours(Hdf5File& file, const std::string& interlace)
{
    return interlace == "INTERLACE_PLANE"
               ? file.DataSet("/image", H5T_STD_U8LE, {3, height, width}, Planes(ColourPicture()))
                     .Text("/image", "INTERLACE_MODE", interlace)
               : file.DataSet("/image", H5T_STD_U8LE, {height, width, 3}, ColourPicture())
                     .Text("/image", "INTERLACE_MODE", interlace);
}

TEST(HdfReader, ShowsColoursAsTheyAreStoredPixelByPixelOrPlaneByPlane)
{
    for (const char* interlace : {"INTERLACE_PIXEL", "INTERLACE_PLANE"})
    {
        SCOPED_TRACE(interlace);
        Hdf5File file;
        const FileOpen open{WithColours(file, interlace).Build()};
        ASSERT_TRUE(open.succeeded);
        EXPECT_THAT(open.lines, IsEmpty());
        EXPECT_THAT(*open.image.Reader(), HasFacts({FileType::Hdf, PixelType::RGB24, width, height, 1}));
        EXPECT_EQ(open.image.Reader()->displayPixels, ColourPicture());
    }
}

TEST(HdfReader, ShowsTheOnePictureOfAColourDatasetThatIsKeptTwice)
{
    // Chunks of 2 x 24 x 40 bytes: 4 x 48 x 40 are kept of the 3 x 32 x 40, twice as many.
    const Bytes picture = ColourPicture();
    Hdf5File file;
    file.DataSet("/image", H5T_STD_U8LE, {3, height, width}, Planes(picture), {.chunk = {2, 24, 40}});
    file.Text("/image", "INTERLACE_MODE", "INTERLACE_PLANE");
    const Bytes bytes = file.Build();
    for (const uint32_t frameIndex : {0U, 1U})
    {
        const FileOpen open{bytes, readModeFrame, frameIndex};
        ASSERT_TRUE(open.succeeded) << testing::PrintToString(open.lines);
        EXPECT_EQ(open.image.Reader()->frameCount, 2U);
        EXPECT_EQ(open.image.Reader()->displayPixels, picture);
    }
}

} // namespace
