#include "support/display/FourSamples.h"
#include "support/display/FrameReader.h"
#include "support/display/ReferenceDisplay.h"
#include "support/display/VariedSamples.h"
#include "support/files/Hdf5File.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr uint32_t width = 40;
constexpr uint32_t height = 32;
constexpr size_t pixelCount = size_t{width} * height;

/// The same again and again: in a frame of four samples none of them is too rare to count.
Bytes Repeated(const Bytes& bytes, size_t times)
{
    Bytes repeated;
    for (size_t i = 0; i < times; ++i)
        repeated.insert(repeated.end(), bytes.begin(), bytes.end());
    return repeated;
}

struct StoredRow
{
    PixelType pixelType;
    hid_t littleEndian;
    hid_t bigEndian;
    size_t sampleBytes;
};

std::vector<StoredRow> StoredRows()
{
    return {
        {PixelType::UInt16, H5T_STD_U16LE, H5T_STD_U16BE, 2},
        {PixelType::Int16, H5T_STD_I16LE, H5T_STD_I16BE, 2},
        {PixelType::UInt32, H5T_STD_U32LE, H5T_STD_U32BE, 4},
        {PixelType::Int32, H5T_STD_I32LE, H5T_STD_I32BE, 4},
        {PixelType::Float32, H5T_IEEE_F32LE, H5T_IEEE_F32BE, 4},
    };
}

TEST(HdfReader, ShowsTheGrayTypesThatItReads)
{
    for (const StoredRow& row : StoredRows())
    {
        SCOPED_TRACE(PixelTypeName(row.pixelType));
        const FourSamples samples = FourSamplesOf(row.pixelType);
        const FileOpen open{Hdf5File()
                                .DataSet("/image", row.littleEndian, {height, width},
                                         Repeated(samples.stored, pixelCount / 4))
                                .Build()};
        ASSERT_TRUE(open.succeeded);
        EXPECT_THAT(open.lines, IsEmpty());
        EXPECT_EQ(open.image.Reader()->displayPixels, Repeated(samples.picture, pixelCount / 4));
    }
}

TEST(HdfReader, ListsTheOtherGrayTypesButDoesNotReadThem)
{
    for (const hid_t type : {H5T_STD_U8LE, H5T_STD_I8LE, H5T_IEEE_F64LE})
    {
        const Bytes file = Hdf5File().AnyDataSet("/image", type, {height, width}).Build();
        const FileOpen header{file, readModeHeader};
        EXPECT_TRUE(header.succeeded);
        EXPECT_THAT(header.lines, IsEmpty());
        const FileOpen frame{file, readModeFrame};
        EXPECT_FALSE(frame.succeeded);
        EXPECT_THAT(frame.lines, ElementsAre("[Lumora] HDF: Unsupported pixel type"));
    }
}

Bytes BigEndian(Bytes samples, size_t sampleBytes)
{
    for (auto sample = samples.begin(); sample != samples.end();
         sample += static_cast<ptrdiff_t>(sampleBytes))
        std::reverse(sample, sample + static_cast<ptrdiff_t>(sampleBytes));
    return samples;
}

DisplayedFrame Reference(PixelType pixelType, const Bytes& samples)
{
    return ReferenceDisplay({.pixelType = pixelType,
                             .width = width,
                             .height = height,
                             .bytes = samples,
                             .fileType = FileType::Hdf});
}

void ExpectFrame(const FileOpen& open, const DisplayedFrame& expected)
{
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.lines, expected.lines);
    EXPECT_EQ(open.image.Reader()->displayPixels, expected.pixels);
}

TEST(HdfReader, ShowsWholeDatasetsAsTheReferenceDoes)
{
    for (const StoredRow& row : StoredRows())
    {
        SCOPED_TRACE(PixelTypeName(row.pixelType));
        const Bytes samples = VariedSamples(row.pixelType, pixelCount);
        const Bytes swapped = BigEndian(samples, row.sampleBytes);
        const DisplayedFrame expected = Reference(row.pixelType, samples);
        for (const Hdf5Storage& storage : {Hdf5Storage{}, Hdf5Storage{.chunk = {16, 20}}})
        {
            ExpectFrame(FileOpen{Hdf5File()
                                     .DataSet("/image", row.littleEndian, {height, width}, samples, storage)
                                     .Build()},
                        expected);
            ExpectFrame(
                FileOpen{
                    Hdf5File().DataSet("/image", row.bigEndian, {height, width}, swapped, storage).Build()},
                expected);
        }
    }
}

TEST(HdfReader, ShowsTheFramesOfASeriesAsTheReferenceDoes)
{
    constexpr size_t frameCount = 5;
    for (const StoredRow& row : StoredRows())
    {
        SCOPED_TRACE(PixelTypeName(row.pixelType));
        // The frame's number is the index that runs fastest.
        const Bytes samples = VariedSamples(row.pixelType, pixelCount * frameCount);
        std::vector<Bytes> frames(frameCount);
        for (size_t sample = 0; sample < pixelCount * frameCount; ++sample)
        {
            const auto first = samples.begin() + static_cast<ptrdiff_t>(sample * row.sampleBytes);
            Bytes& frame = frames[sample % frameCount];
            frame.insert(frame.end(), first, first + static_cast<ptrdiff_t>(row.sampleBytes));
        }
        const Bytes file = Hdf5File()
                               .DataSet("/Data/Image/1/Data", row.bigEndian, {height, width, frameCount},
                                        BigEndian(samples, row.sampleBytes), {.chunk = {height, width, 1}})
                               .Build();
        for (uint32_t frameIndex = 0; frameIndex < frameCount; ++frameIndex)
        {
            SCOPED_TRACE(frameIndex);
            const FileOpen open{file, readModeFrame, frameIndex};
            ExpectFrame(open, Reference(row.pixelType, frames[frameIndex]));
            EXPECT_EQ(open.image.Reader()->frameCount, frameCount);
        }
    }
}

TEST(HdfReader, KeepsTheTinyMaximumOfFramesWithoutAPositiveSample)
{
    // From -1 to almost nothing there are 65535 steps: 0.00001 above -1 is none of them, 0.00003 the first.
    const Bytes samples = Repeated(Stored<float>({-1, -0.99999F, -0.99997F, -0.99997F}), pixelCount / 4);
    const FileOpen open{Hdf5File().DataSet("/image", H5T_IEEE_F32LE, {height, width}, samples).Build()};
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.image.Reader()->displayPixels, Repeated({0, 0, 255, 255}, pixelCount / 4));
}

TEST(HdfReader, RefusesDatasetsWithMoreOrFewerSamplesThanTheirStorageSays)
{
    // Of 4 chunks only the first one is there: as many bytes as one frame has.
    Hdf5File file;
    file.AnyDataSet("/image", H5T_STD_U16LE, {32, 32, 4}, {.chunk = {32, 32, 1}, .isWritten = false});
    file.Chunk("/image", Bytes(32 * 32 * 2));
    const Bytes bytes = file.Build();
    EXPECT_TRUE((FileOpen{bytes, readModeHeader}.succeeded));
    const FileOpen open{bytes, readModeFrame};
    EXPECT_FALSE(open.succeeded);
    EXPECT_THAT(open.lines, ElementsAre("[Lumora] HDF: Could not read the image data"));
}

TEST(HdfReader, RefusesFramesThatTheirSeriesDoesNotHave)
{
    // As many bytes as three frames of (height, width), stored with the planes first.
    const Bytes bytes = Hdf5File()
                            .AnyDataSet("/image", H5T_STD_U16LE, {3, 40, 50})
                            .Text("/image", "INTERLACE_MODE", "INTERLACE_PLANE")
                            .Build();
    const FileOpen open{bytes, readModeFrame, 1};
    EXPECT_FALSE(open.succeeded);
    EXPECT_THAT(open.lines, ElementsAre("[Lumora] HDF: Could not read the first frame of the series"));
}

TEST(HdfReader, RefusesChunksThatWouldServeToExhaustMemory)
{
    // A frame is 8192 x 8192 x 4 bytes, as the storage says. The chunk would have 1 GiB.
    Hdf5File file;
    file.AnyDataSet("/Image/Data", H5T_STD_U32LE, {8192, 8192, 4},
                    {.chunk = {8192, 8192, 4}, .isCompressed = true, .isWritten = false});
    file.Chunk("/Image/Data", Bytes(size_t{8192} * 8192 * 4));
    const Bytes bytes = file.Build();
    const FileOpen header{bytes, readModeHeader};
    ASSERT_TRUE(header.succeeded);
    EXPECT_EQ(header.image.Reader()->frameCount, 1U);
    const FileOpen open{bytes, readModeFrame};
    EXPECT_FALSE(open.succeeded);
    EXPECT_THAT(open.lines, ElementsAre("[Lumora] HDF: Could not read the image data"));
}

TEST(HdfReader, ReadsNothingButTheFileWhenOnlyFactsAreWanted)
{
    const Bytes file = Hdf5File().AnyDataSet("/Image/Data", H5T_STD_U16LE, {height, width, 3}).Build();
    const FileOpen open{file, readModeHeader};
    ASSERT_TRUE(open.succeeded);
    EXPECT_THAT(open.image.Reader()->displayPixels, IsEmpty());
    EXPECT_LE(open.stream.bytesRead, file.size() + 64) << "the file once, and the bytes that tell its format";
}

} // namespace
