#include "formats/mrc/RawImageMrc.h"
#include "support/FileFacts.h"
#include "support/files/MrcFile.h"
#include "support/streams/ReaderExpectations.h"
#include "support/streams/SparseRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;

using MrcRead = FileRead<RawImageMrc>;

namespace {

constexpr uint64_t windowBytes = 0x400000;

TEST(MrcReader, RefusesAFrameOfNoBytesSilently)
{
    struct Row
    {
        uint32_t columns;
        uint32_t rows;
        uint32_t mode;
    };
    constexpr Row rows[] = {
        {32768, 32768, 2}, // 2^32 bytes, in 32 bits none
        {1, 1, 101},       // half a byte
    };
    for (const Row& row : rows)
        for (const uint32_t sections : {0U, 1U, 2000U})
        {
            const auto file =
                MrcFile().Size(row.columns, row.rows, sections).Mode(row.mode).Samples(Bytes(64));
            ExpectRefusal<RawImageMrc>(file.Build(), {}, row.columns);
        }
}

TEST(MrcReader, ComputesTheFrameSizeIn32Bits)
{
    struct Row
    {
        uint32_t columns;
        uint32_t rows;
        uint32_t mode;
        PixelType pixelType;
        /// Low 32 bits of the frame size.
        size_t frameBytes;
    };
    constexpr Row rows[] = {
        {54161, 19825, 2, PixelType::Float32, 4},      // 2^30 + 1 samples of four bytes
        {32768, 32769, 2, PixelType::Float32, 131072}, // 2^30 + 2^15 samples of four bytes
        {43691, 32768, 16, PixelType::RGB24, 32768},   // 2^32 + 2^15 bytes in pixels of three
    };
    for (const Row& row : rows)
    {
        const Bytes file = MrcFile()
                               .Size(row.columns, row.rows, 2)
                               .Mode(row.mode)
                               .Samples(Bytes(2 * row.frameBytes))
                               .Build();
        // The picture needs all the bytes.
        SCOPED_TRACE(row.columns);
        ExpectFactsWithoutFrame<RawImageMrc>(
            file, 1, cannotReadImage,
            HasFacts({FileType::Mrc, row.pixelType, row.columns, row.rows, 2, false, L"",
                      L"MRC Mode " + std::to_wstring(row.mode)}));

        Bytes cut = file;
        cut.pop_back();
        const MrcRead less{cut, 0};
        EXPECT_TRUE(less.succeeded) << row.columns;
        EXPECT_EQ(less.reader.frameCount, 1U) << row.columns;
    }
}

TEST(MrcReader, HalvesTheFrameSizeOf4BitSamplesRoundingDown)
{
    const std::string mode101 = "[Lumora] MRC: Non-standard mode 101 detected (4-bit pixel format)";
    // 3 x 3 samples: four bytes a frame, the ninth sample has none.
    const Bytes file =
        MrcFile().Size(3, 3, 2).Mode(101).Samples({0xFF, 0xFF, 0xFF, 0xFF, 0xF0, 0x21, 0x43, 0x65}).Build();
    const MrcRead read{file, 1, 1};

    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.width, 3U);
    EXPECT_EQ(read.reader.frameCount, 2U);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 255, 17, 34, 51, 68, 85, 102, 0));
    EXPECT_THAT(read.lines, ElementsAre(mode101));

    const MrcRead beyond{file, 1, 2};
    EXPECT_THAT(beyond.lines, ElementsAre("[Lumora] MRC: Frame index is out of range"));
}

TEST(MrcReader, ComparesOnlyTheLow32BitsOfTheNumberOfFrames)
{
    // The frames of one byte behind the main header number 2^32, and 2^32 + 5.
    Bytes bytes = MrcFile().Size(1, 1, 10).Mode(0).Build();
    bytes.resize(windowBytes);

    const MrcRead none{bytes, 0, 0, {.reportedSize = 0x100000400}};
    EXPECT_FALSE(none.succeeded);
    EXPECT_THAT(none.lines, ElementsAre("[Lumora] MRC: No complete frame is present in the file"));

    const MrcRead five{bytes, 0, 4, {.reportedSize = 0x100000405}};
    EXPECT_TRUE(five.succeeded);
    EXPECT_EQ(five.reader.frameCount, 5U);
    EXPECT_THAT(five.lines,
                ElementsAre("[Lumora] MRC: The file contains less frames than specified in the header"));
}

TEST(MrcReader, FindsAFrameBeyondFourGigabytes)
{
    // 70000 frames of 256 x 256 samples of one byte behind the long header.
    constexpr uint64_t frameBytes = 65536;
    constexpr uint32_t frameIndex = 65537;
    constexpr uint64_t place = 8192 + frameIndex * frameBytes;
    static_assert(place == 0x100012000);
    Bytes frame(frameBytes, 0x80);
    std::fill(frame.begin() + 32768, frame.end(), uint8_t{0x7F});

    constexpr uint64_t streamSize = 8192 + 70000 * frameBytes;
    const SparseRead<RawImageMrc> read{
        streamSize, MrcFile().Size(256, 256, 70000).Mode(0).Build(), place, frame, 1, frameIndex};
    EXPECT_TRUE(read.succeeded);
    ASSERT_EQ(read.reader.displayPixels.size(), frameBytes);
    EXPECT_EQ(read.reader.displayPixels[0], 0);
    EXPECT_EQ(read.reader.displayPixels[frameBytes - 1], 255);
    EXPECT_EQ(read.reader.frameCount, 70000U);
}

TEST(MrcReader, ReadsOneWindowAndTheFrameOfAStack)
{
    // 80 frames of 256 x 256 bytes are five megabytes, more than a window.
    const Bytes file = MrcFile().Size(256, 256, 80).Mode(0).Samples(Bytes(size_t{80} * 65536, 0x11)).Build();
    for (const uint32_t frameIndex : {0U, 79U})
        ExpectReadsOfOneWindow<RawImageMrc>(file, frameIndex, 65536);
}

TEST(MrcReader, ReadsNoMoreForAnExtendedHeaderLongerThanAWindow)
{
    Bytes extended = AcquisitionHeader(5, "TAV Ardix", "2.10");
    extended.resize(windowBytes + 0x100000);
    const Bytes file = MrcFile()
                           .Size(3, 1, 1)
                           .Mode(6)
                           .ExtendedHeader("TAV1", extended)
                           .Numbers<uint16_t>({0, 9, 255})
                           .Build();
    const MrcRead read{file};

    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.software, L"Ardix 2.10");
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 9, 255));
    EXPECT_EQ(read.stream.readCalls, 2U);
    EXPECT_EQ(read.stream.bytesRead, windowBytes + 6);
}

TEST(MrcReader, AsksASmallFileForAllOfItOnce)
{
    const Bytes file = MrcFile().Size(3, 1, 1).Mode(6).Numbers<uint16_t>({0, 9, 255}).Build();
    const MrcRead header{file, 0};
    EXPECT_EQ(header.stream.readCalls, 1U);
    EXPECT_EQ(header.stream.bytesRead, 1030U);

    // Opening looks at the first 64 bytes before a reader is chosen.
    const FileOpen open{file};
    EXPECT_TRUE(open.succeeded);
    EXPECT_EQ(open.stream.readCalls, 3U);
    EXPECT_EQ(open.stream.bytesRead, 64U + 1030U + 6U);
    EXPECT_EQ(open.stream.statFlags, DWORD{STATFLAG_NONAME});
}

} // namespace
