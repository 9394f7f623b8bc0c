#include "support/FileBytes.h"
#include "support/FileFacts.h"
#include "support/TestFolders.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <numeric>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Files written by instruments and analysis programs are not part of the source tree. Without their folder
/// these tests are skipped; a single file that is missing there is a failure.
class RealFiles : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!std::filesystem::is_directory(TestFolder("real")))
            GTEST_SKIP() << "there is no folder of real files: " << TestFolder("real");
    }

    static Bytes Load(const std::string& name)
    {
        Bytes bytes = FileBytes(TestFolder("real") / name);
        EXPECT_THAT(bytes, testing::Not(IsEmpty())) << name;
        return bytes;
    }
};

/// Expects what another program tells of a file.
void ExpectFacts(const Bytes& file, const FileFacts& facts)
{
    const FileOpen header{file, 0};
    ASSERT_TRUE(header.succeeded);
    EXPECT_THAT(header.lines, IsEmpty());
    EXPECT_THAT(*header.image.Reader(), HasFacts(facts));
}

/// Expects that a frame is refused in this line, whether it is wanted or its header alone.
void ExpectRefusal(const Bytes& file, const std::string& line, uint32_t frameIndex = 0)
{
    for (const uint32_t mode : {0U, 1U})
    {
        const FileOpen open{file, mode, frameIndex};
        EXPECT_FALSE(open.succeeded);
        EXPECT_THAT(open.lines, ElementsAre(line));
    }
}

/// What numpy computes of a frame's picture.
struct FramePicture
{
    uint32_t frameIndex;
    std::array<uint8_t, 8> first;
    std::array<uint8_t, 8> last;
    uint32_t sum;
};

void ExpectPicture(const Bytes& file, const FramePicture& expected)
{
    const FileOpen open{file, 1, expected.frameIndex};
    ASSERT_TRUE(open.succeeded) << expected.frameIndex;
    EXPECT_THAT(open.lines, IsEmpty()) << expected.frameIndex;
    const FrameBytes& pixels = open.image.Reader()->displayPixels;
    ASSERT_GE(pixels.size(), 16U);
    EXPECT_TRUE(std::equal(expected.first.begin(), expected.first.end(), pixels.begin()))
        << expected.frameIndex;
    EXPECT_TRUE(std::equal(expected.last.begin(), expected.last.end(), pixels.end() - 8))
        << expected.frameIndex;
    EXPECT_EQ(std::accumulate(pixels.begin(), pixels.end(), 0U), expected.sum) << expected.frameIndex;
}

TEST_F(RealFiles, DensityMap)
{
    const Bytes file = Load("mrc/EMD-3197.map");
    ExpectFacts(file, {FileType::Mrc, PixelType::Float32, 20, 20, 20, false, L"", L"MRC Mode 2"});
    ExpectPicture(file,
                  {0, {36, 41, 44, 50, 57, 66, 63, 56}, {152, 145, 147, 143, 136, 124, 123, 120}, 50124});
    ExpectPicture(file,
                  {10, {95, 99, 94, 91, 90, 93, 97, 98}, {207, 208, 199, 195, 194, 194, 183, 173}, 52511});
    ExpectPicture(file,
                  {19, {41, 51, 57, 60, 63, 64, 65, 63}, {151, 149, 150, 143, 133, 132, 133, 129}, 45150});
}

TEST_F(RealFiles, DetectorMovie)
{
    const Bytes file = Load("mrc/movie_348_frames.mrc");
    ExpectFacts(file, {FileType::Mrc2014, PixelType::UInt16, 16, 16, 348, false, L"", L"MRC2014 Mode 6"});
    ExpectPicture(file, {0, {12, 2, 3, 5, 5, 7, 8, 59}, {239, 242, 239, 237, 231, 227, 225, 223}, 35007});
    ExpectPicture(file, {174, {15, 3, 4, 5, 5, 7, 8, 59}, {239, 243, 241, 237, 232, 228, 226, 223}, 35174});
    ExpectPicture(file, {347, {17, 1, 3, 5, 5, 7, 8, 59}, {239, 244, 240, 237, 231, 228, 226, 222}, 35087});
}

TEST_F(RealFiles, SeriesOfDiffractionPatterns)
{
    const Bytes file = Load("ser/diffraction_5_frames.ser");
    ExpectFacts(file, {FileType::Ser, PixelType::Int32, 128, 128, 5, true, L"Pellox"});
    ExpectPicture(
        file, {0, {126, 125, 166, 104, 126, 104, 84, 126}, {104, 126, 126, 84, 169, 148, 127, 174}, 1946050});
    ExpectPicture(
        file, {1, {112, 133, 133, 112, 90, 155, 112, 156}, {133, 134, 135, 90, 45, 112, 158, 185}, 2087950});
    ExpectPicture(
        file, {4, {111, 133, 68, 111, 111, 175, 111, 90}, {111, 156, 178, 90, 178, 157, 157, 183}, 2108426});
    ExpectRefusal(file, "[Lumora] SER: Frame index is out of range", 5);
}

TEST_F(RealFiles, SeriesOfOneImage)
{
    const Bytes file = Load("ser/image_64.ser");
    ExpectFacts(file, {FileType::Ser, PixelType::Float32, 64, 64, 1, true, L"Pellox"});
    ExpectPicture(
        file,
        {0, {253, 246, 248, 247, 246, 247, 249, 246}, {242, 243, 243, 243, 247, 249, 246, 245}, 814197});
}

TEST_F(RealFiles, SeriesOfSpectra)
{
    ExpectRefusal(Load("ser/spectrum.ser"), "[Lumora] SER: No 2D data structure found");
}

TEST_F(RealFiles, ArrayWithAnImage)
{
    const Bytes file = Load("npy/survey_512.npy");
    ExpectFacts(file, {FileType::Npy, PixelType::UInt16, 512, 512, 1});
    ExpectPicture(file,
                  {0, {178, 178, 178, 178, 178, 178, 178, 178}, {83, 83, 83, 83, 83, 83, 83, 83}, 33154441});
}

TEST_F(RealFiles, ArrayWithATable)
{
    const Bytes file = Load("npy/table.npy");
    // Columns one after another, with numbers that are none, which is read as rows all the same.
    ExpectFacts(file, {FileType::Npy, PixelType::Double64, 6, 154, 1});
    ExpectPicture(file, {0, {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0}, 32161});
}

/// A file whose thumbnail is the only image with enough samples to be found.
struct ThumbnailFile
{
    const char* name;
    FileType fileType;
    uint32_t width;
    uint32_t height;
    /// Where a dump of the tags shows the first sample of the picture, and the sum of all shown bytes.
    size_t dataOffset;
    uint32_t sum;
};

TEST_F(RealFiles, TagFilesWithAThumbnailAndASmallImage)
{
    constexpr ThumbnailFile files[] = {
        {"dm/diffraction.dm3", FileType::Dm3, 384, 384, 4476, 29624304},
        {"dm/luminescence.dm4", FileType::Dm4, 384, 384, 9345, 84601764},
        {"dm/packed_fft.dm4", FileType::Dm4, 128, 128, 6315, 2216292},
        {"dm/spectrum_1d.dm4", FileType::Dm4, 384, 193, 5206, 45524246},
    };
    for (const ThumbnailFile& expected : files)
    {
        SCOPED_TRACE(expected.name);
        const Bytes file = Load(expected.name);
        Bytes picture;
        for (size_t i = 0; i < size_t{4} * expected.width * expected.height; ++i)
            if (i % 4 != 3)
                picture.push_back(file.at(expected.dataOffset + i));
        EXPECT_EQ(std::accumulate(picture.begin(), picture.end(), 0U), expected.sum);

        for (const uint32_t mode : {0U, 1U})
        {
            const FileOpen open{file, mode};
            ASSERT_TRUE(open.succeeded);
            EXPECT_THAT(open.lines, IsEmpty());
            const RawImageBase& reader = *open.image.Reader();
            EXPECT_THAT(reader, HasFacts({.fileType = expected.fileType,
                                          .pixelType = PixelType::RGBA32,
                                          .width = expected.width,
                                          .height = expected.height,
                                          .frameCount = 1,
                                          .software = L"Gatan Digital Micrograph"}));
            EXPECT_EQ(reader.displayPixels, mode == 0 ? Bytes{} : picture);
        }

        const std::string version = expected.fileType == FileType::Dm3 ? "DM3" : "DM4";
        ExpectRefusal(file, "[Lumora] " + version + ": No images found", 1);
    }
}

// Even the thumbnails of these have fewer than 10000 samples. The one large array, the printer's settings,
// comes last and leads to nothing.
TEST_F(RealFiles, TagFilesWithSmallImagesOnly)
{
    for (const char* name : {"dm/small_2d.dm3", "dm/spectrum_1d.dm3"})
    {
        SCOPED_TRACE(name);
        ExpectRefusal(Load(name), "[Lumora] DM3: No images found");
    }
}

// The names of its datasets end in "Image Data", and three channels of a scan have one each: signed counts of
// two detectors, then a sum over diffraction patterns.
TEST_F(RealFiles, ScanWithThreeChannels)
{
    const Bytes file = Load("hdf/microprobe.h5");
    ExpectFacts(file, {FileType::Hdf, PixelType::Int16, 64, 64, 3});
    ExpectPicture(file,
                  {0, {0, 255, 255, 255, 255, 255, 255, 255}, {0, 0, 0, 255, 255, 255, 255, 255}, 941205});
    ExpectPicture(
        file,
        {1, {127, 127, 127, 127, 127, 127, 127, 127}, {127, 127, 127, 127, 127, 127, 127, 127}, 530945});
    ExpectPicture(file, {2, {6, 4, 3, 2, 0, 1, 1, 0}, {193, 195, 197, 198, 196, 164, 189, 189}, 227130});
    const FileOpen sum{file, 0, 2};
    ASSERT_TRUE(sum.succeeded);
    EXPECT_EQ(sum.image.Reader()->pixelType, PixelType::Float32);
    ExpectRefusal(file, "[Lumora] HDF: Frame index is out of range", 3);
}

// Pictures by other names, and one of four colours in a compound type.
TEST_F(RealFiles, Hdf5FilesWithoutNamedImages)
{
    for (const char* name : {"hdf/acquisition.emd", "hdf/rgba16.hdf5"})
    {
        SCOPED_TRACE(name);
        ExpectRefusal(Load(name), "[Lumora] HDF: No images found");
    }
}

} // namespace
