#include "formats/RawImageRaw.h"
#include "support/display/FrameReader.h"
#include "support/display/VariedSamples.h"
#include "support/files/RawFile.h"
#include "support/streams/ReaderExpectations.h"
#include "support/streams/SparseRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using RawRead = FileRead<RawImageRaw>;

namespace {

const std::string wideRange = "[Lumora] The dynamic range is too high for calculating the exact histogram";

struct TypeRow
{
    uint32_t bits;
    uint32_t kind;
    PixelType pixelType;
    /// Samples of a frame of 2 x 2 pixels.
    Bytes samples;
    Bytes picture;
    Lines lines;
};

/// Numbers are chosen to span 255 steps. Fractions are always quantised to 2^32 - 1 steps, 16843009 to each
/// of these, which is more than the exact histogram is made for.
const TypeRow sampleTypes[] = {
    {8, RawFile::Unsigned, PixelType::UInt8, {0, 100, 200, 255}, {0, 100, 200, 255}, {}},
    {16,
     RawFile::Unsigned,
     PixelType::UInt16,
     Stored<uint16_t>({65000, 65255, 65001, 65128}),
     {0, 255, 1, 128},
     {}},
    {32,
     RawFile::Unsigned,
     PixelType::UInt32,
     Stored<uint32_t>({70000, 70255, 70001, 70128}),
     {0, 255, 1, 128},
     {}},
    {8, RawFile::Signed, PixelType::Int8, {0x80, 0x00, 0x00, 0x7F}, {0, 128, 128, 255}, {}},
    {16, RawFile::Signed, PixelType::Int16, Stored<int16_t>({-100, -99, 55, 155}), {0, 1, 155, 255}, {}},
    {32,
     RawFile::Signed,
     PixelType::Int32,
     Stored<int32_t>({-100000, -99999, -99845, -99745}),
     {0, 1, 155, 255},
     {}},
    {32,
     RawFile::FloatingPoint,
     PixelType::Float32,
     Stored<float>({0, 255, 1, 128}),
     {0, 255, 1, 128},
     {wideRange}},
    {64,
     RawFile::FloatingPoint,
     PixelType::Double64,
     Stored<double>({0, 255, 1, 128}),
     {0, 255, 1, 128},
     {wideRange}},
    {24,
     RawFile::Colours,
     PixelType::RGB24,
     {1, 2, 3, 40, 50, 60, 7, 8, 9, 253, 254, 255},
     {1, 2, 3, 40, 50, 60, 7, 8, 9, 253, 254, 255},
     {}},
};

TEST(RawReader, ShowsEveryTypeWithTheFirstStoredRowAtTheTop)
{
    for (const TypeRow& row : sampleTypes)
    {
        const RawRead read{RawFile().Size(2, 2).Samples(row.bits, row.kind, row.samples).Build()};
        EXPECT_TRUE(read.succeeded) << row.bits << " of kind " << row.kind;
        EXPECT_EQ(read.reader.pixelType, row.pixelType) << row.bits << " of kind " << row.kind;
        EXPECT_EQ(read.reader.displayPixels, row.picture) << row.bits << " of kind " << row.kind;
        EXPECT_EQ(read.lines, row.lines) << row.bits << " of kind " << row.kind;
    }
}

/// Expects the picture that the reference makes of the samples, and whatever follows them in the file.
void ExpectReferencePicture(const TypeRow& row, uint32_t width, uint32_t height, const Bytes& bytes,
                            uint32_t xStride, uint32_t yStride)
{
    SCOPED_TRACE(testing::Message() << row.bits << " of kind " << row.kind << ", " << width << " x " << height
                                    << ", strides " << xStride << " and " << yStride);
    const StoredFrame frame = {.pixelType = row.pixelType,
                               .width = width,
                               .height = height,
                               .bytes = bytes,
                               .fileType = FileType::Raw,
                               .xStride = xStride,
                               .yStride = yStride};
    const DisplayedFrame expected = ReferenceDisplay(frame);
    const auto file =
        RawFile().Size(width, height).Samples(row.bits, row.kind, bytes).Strides(xStride, yStride).Gap(3);

    const RawRead header{file.Build(), 0};
    EXPECT_TRUE(header.succeeded);
    EXPECT_EQ(header.reader.xStride, xStride);
    EXPECT_EQ(header.reader.yStride, yStride);
    EXPECT_THAT(header.lines, IsEmpty());

    const RawRead read{file.Build()};
    EXPECT_EQ(read.succeeded, expected.shown);
    EXPECT_EQ(read.reader.displayPixels, expected.pixels);
    EXPECT_EQ(read.lines, expected.lines);
}

TEST(RawReader, ShowsEveryTypeAsTheReferenceDoes)
{
    constexpr uint32_t sizes[][2] = {{7, 5}, {1, 1}, {1, 9}, {9, 1}, {64, 48}};
    for (const TypeRow& row : sampleTypes)
        for (const auto& [width, height] : sizes)
            ExpectReferencePicture(row, width, height, VariedSamples(row.pixelType, size_t{width} * height),
                                   0, 0);
}

TEST(RawReader, FollowsStridesAsTheReferenceDoes)
{
    constexpr uint32_t width = 7;
    constexpr uint32_t height = 5;
    for (const TypeRow& row : sampleTypes)
    {
        const uint32_t sample = row.bits / 8;
        const uint32_t strides[][2] = {
            {sample, width * sample},                           // packed
            {height * sample, sample},                          // column by column
            {sample, width * sample + 4},                       // padded rows, which wrap
            {2 * sample, 2 * width * sample},                   // every other sample
            {sample, 0},                                        // one row again and again
            {0, sample},                                        // one column
            {1, 1},                                             // samples that overlap
            {width * height * sample, width * height * sample}, // one sample
            {0x7FFFFFFF, 0x80000001},
            {0xFFFFFFFF, 0},
            {0, 0xFFFFFFFF},
            {0xFFFFFFFF, 0xFFFFFFFF},
        };
        for (const auto& [x, y] : strides)
            for (const size_t more : {size_t{0}, size_t{1}, size_t{100}})
            {
                Bytes bytes = VariedSamples(row.pixelType, size_t{width} * height);
                bytes.resize(bytes.size() + more, 0x77);
                ExpectReferencePicture(row, width, height, bytes, x, y);
            }
    }
}

TEST(RawReader, ShowsColumnsAndWrapsRowsByTheirStrides)
{
    // Stored column by column.
    const RawRead columns{RawFile().Size(3, 2).Samples(8, 0, {0, 3, 1, 4, 2, 255}).Strides(2, 1).Build()};
    EXPECT_THAT(columns.reader.displayPixels, ElementsAre(0, 1, 2, 3, 4, 255));

    // Rows of three bytes with one of padding: the third row would begin at 6 of 6 bytes, that is, at 0.
    const RawRead rows{
        RawFile().Size(2, 3).Samples(8, 0, {0, 1, 99, 2, 255, 99, 7, 8}).Strides(1, 3).Build()};
    EXPECT_THAT(rows.reader.displayPixels, ElementsAre(0, 1, 2, 255, 0, 1));
    EXPECT_THAT(rows.lines, IsEmpty());
}

TEST(RawReader, NeedsTheBytesOfAPackedFrameWhateverTheStrides)
{
    for (const TypeRow& row : sampleTypes)
        for (const uint32_t stride : {0U, 1U, 0xFFFFFFFFU})
            for (const size_t missing : {size_t{1}, row.samples.size()})
            {
                const Bytes cut(row.samples.begin(), row.samples.end() - static_cast<ptrdiff_t>(missing));
                const auto file =
                    RawFile().Size(2, 2).Samples(row.bits, row.kind, cut).Strides(stride, stride);
                SCOPED_TRACE(row.bits);
                ExpectFactsWithoutFrame<RawImageRaw>(file.Build(), 0, cannotReadImage);
            }
}

TEST(RawReader, FindsTheSamplesBehindAGap)
{
    for (const uint32_t gap : {0U, 1U, 15U, 1000U, 5000000U})
    {
        const auto file = RawFile().Size(4, 1).Samples(8, 0, {0, 100, 200, 255}).Gap(gap);
        const RawRead read{file.Build()};
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 100, 200, 255)) << gap;
        EXPECT_THAT(read.lines, IsEmpty()) << gap;
    }
}

TEST(RawReader, ShowsSamplesWhoseSizeTheFileTells)
{
    const RawRead read{RawFile()
                           .Size(2, 2)
                           .Samples(16, RawFile::Unsigned, Stored<uint16_t>({65000, 65255, 65001, 65128}))
                           .BitsPerPixel(12)
                           .Build()};
    EXPECT_TRUE(read.succeeded);
    EXPECT_THAT(read.lines,
                ElementsAre("[Lumora] RAW: The bits per pixel in the file header is not correct"));
    EXPECT_EQ(read.reader.pixelType, PixelType::UInt16);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 255, 1, 128));
}

TEST(RawReader, WrapsTheLongestStrideWithinTheFrame)
{
    // 2^32 - 1 is 3 modulo 7: every third sample, round and round.
    const RawRead read{RawFile()
                           .Size(7, 1)
                           .Samples(8, RawFile::Unsigned, {0, 43, 85, 128, 170, 213, 255})
                           .Strides(0xFFFFFFFF, 0)
                           .Build()};
    EXPECT_TRUE(read.succeeded);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 128, 255, 85, 213, 43, 170));
}

TEST(RawReader, WrapsTheDataOffsetAt32Bits)
{
    struct Row
    {
        uint32_t word;
        Bytes picture;
    };
    const Row rows[] = {
        {0, {60, 150, 255, 0}},
        // The last byte of the header, and three of the samples.
        {0xFFFFFFFF, {0, 60, 150, 255}},
        // The y stride's word.
        {0xFFFFFFFC, {0, 0, 0, 0}},
    };
    for (const Row& row : rows)
    {
        const auto file = RawFile().Size(4, 1).Samples(8, 0, {60, 150, 255, 0}).DataOffset(row.word);
        const RawRead read{file.Build()};
        EXPECT_TRUE(read.succeeded) << row.word;
        EXPECT_EQ(read.reader.displayPixels, row.picture) << row.word;
    }

    // All the way round to the signature.
    const Bytes letters = {'T', 'A', 'V', ' '};
    const StoredFrame frame = {.width = 4, .height = 1, .bytes = letters, .fileType = FileType::Raw};
    const RawRead start{RawFile().Size(4, 1).DataOffset(0xFFFFFFCF).Build()};
    EXPECT_TRUE(start.succeeded);
    EXPECT_EQ(start.reader.displayPixels, ReferenceDisplay(frame).pixels);
}

TEST(RawReader, RefusesADataOffsetBeyondTheEnd)
{
    for (const uint32_t word : {1U, 4U, 5U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFCEU})
        for (const uint32_t stride : {0U, 1U})
        {
            const auto file =
                RawFile().Size(4, 1).Samples(8, 0, {0, 1, 2, 3}).DataOffset(word).Strides(stride, stride);
            SCOPED_TRACE(word);
            ExpectFactsWithoutFrame<RawImageRaw>(file.Build(), 0, cannotReadImage);
        }
}

TEST(RawReader, FindsTheSamplesJustBelow4GiB)
{
    constexpr uint32_t word = 0xFFFFFFCE;
    constexpr uint64_t place = 0xFFFFFFFF;
    const SparseRead<RawImageRaw> read{
        place + 4, RawFile().Size(4, 1).DataOffset(word).Build(), place, {0, 70, 80, 255}};
    EXPECT_TRUE(read.succeeded);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 70, 80, 255));
    EXPECT_THAT(read.lines, IsEmpty());
}

TEST(RawReader, QuantisesFractionsFinelyWhateverTheirRange)
{
    // One in 200 is far off. In 65535 steps there would be no difference between 0.5 and 0.5001; in 2^32 - 1
    // steps there are 429, of the 16383 in the coarse histogram's first bin.
    Bytes samples;
    for (int i = 0; i < 1000; ++i)
    {
        const float value = i % 200 == 0 ? 1000.0F : i % 2 == 0 ? 0.5F : 0.5001F;
        const Bytes stored = Stored<float>({value});
        samples.insert(samples.end(), stored.begin(), stored.end());
    }
    const StoredFrame fine = {.pixelType = PixelType::Float32,
                              .width = 100,
                              .height = 10,
                              .bytes = samples,
                              .fileType = FileType::Raw};
    StoredFrame coarse = fine;
    coarse.fileType = FileType::Bin;
    const DisplayedFrame expected = ReferenceDisplay(fine);
    ASSERT_NE(expected.pixels, ReferenceDisplay(coarse).pixels);

    const RawRead read{RawFile().Size(100, 10).Samples(32, RawFile::FloatingPoint, samples).Build()};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.displayPixels, expected.pixels);
    EXPECT_EQ(Bytes(read.reader.displayPixels.begin(), read.reader.displayPixels.begin() + 3),
              (Bytes{255, 6, 0}));
    EXPECT_EQ(read.lines, expected.lines);
}

TEST(RawReader, ReadsNoSamplesForTheFactsOfAFile)
{
    const auto file = RawFile().Size(3000, 2000).Samples(8, 0, Bytes(6000000)).Gap(3000000);
    ExpectReadsOfOneWindow<RawImageRaw>(file.Build(), 0, 6000000);
}

} // namespace
