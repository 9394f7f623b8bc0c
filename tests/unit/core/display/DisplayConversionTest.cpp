#include "support/display/FrameReader.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

const Lines invalidResolution = {"[Lumora] Invalid resolution"};
const Lines failedToRead = {"[Lumora] Failed to read the image data into memory"};
const std::string bigEndian = "[Lumora] Big endian byte ordering";

/// The picture of an earlier conversion, to see that a failure leaves it alone.
const Bytes earlierPicture = {1, 2, 3};

/// One conversion at `dataOffset` of a stream whose size is said to be `streamSize`.
struct Conversion
{
    Conversion(FrameReader& reader, IStream* stream, uint64_t streamSize, uint64_t dataOffset)
    {
        reader.displayPixels = FrameBytes(earlierPicture);
        DiagnosticLines diagnostics;
        shown = reader.ConvertToDisplay(stream, streamSize, dataOffset);
        lines = diagnostics.Take();
    }

    bool shown = false;
    Lines lines;
};

struct TypeRow
{
    PixelType type;
    /// What a packed frame of 4 x 2 samples takes in the stream.
    uint32_t frameBytes;
};

constexpr TypeRow typeRows[] = {
    {PixelType::UInt4, 4},     {PixelType::UInt8, 8},      {PixelType::UInt16, 16},
    {PixelType::UInt32, 32},   {PixelType::Int8, 8},       {PixelType::Int16, 16},
    {PixelType::Int32, 32},    {PixelType::Float16, 16},   {PixelType::Float32, 32},
    {PixelType::Double64, 64}, {PixelType::Complex64, 64}, {PixelType::Complex128, 128},
    {PixelType::RGB24, 24},    {PixelType::RGBA32, 32},
};

StoredFrame FourByTwo(PixelType type)
{
    return {.pixelType = type, .width = 4, .height = 2};
}

TEST(DisplayConversion, ReadsNothingInHeaderMode)
{
    FrameReader reader{StoredFrame{.pixelType = PixelType::Unknown, .byteOrder = ByteOrder::BigEndian}};
    reader.readMode = readModeHeader;
    TestStream stream{Bytes(100)};
    const Conversion conversion{reader, &stream, 100, 0};
    EXPECT_TRUE(conversion.shown);
    EXPECT_EQ(conversion.lines, Lines{});
    EXPECT_EQ(reader.displayPixels, earlierPicture);
    EXPECT_EQ(stream.statCalls + stream.seekCalls + stream.readCalls, 0U);

    const Conversion withoutStream{reader, nullptr, 0, 0};
    EXPECT_TRUE(withoutStream.shown);
}

TEST(DisplayConversion, RefusesEmptyFramesAndSidesFrom65536On)
{
    struct Row
    {
        uint32_t width;
        uint32_t height;
    };
    constexpr Row rows[] = {{0, 0},     {0, 1},          {1, 0},          {0, 65536},
                            {65536, 1}, {1, 65536},      {65536, 65536},  {0x10001, 1},
                            {1, 65537}, {0xFFFFFFFF, 1}, {1, 0xFFFFFFFF}, {0x80000000, 2}};
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.width << " x " << row.height);
        // The refusal comes before the note about the byte order.
        FrameReader reader{
            StoredFrame{.width = row.width, .height = row.height, .byteOrder = ByteOrder::BigEndian}};
        TestStream stream{Bytes(100000)};
        const Conversion conversion{reader, &stream, 100000, 0};
        EXPECT_FALSE(conversion.shown);
        EXPECT_EQ(conversion.lines, invalidResolution);
        EXPECT_EQ(reader.displayPixels, earlierPicture);
        EXPECT_EQ(stream.readCalls, 0U);
    }
}

TEST(DisplayConversion, AcceptsSidesOf65535)
{
    ExpectDisplay({.width = 65535, .height = 1, .bytes = Bytes(65535, 9)}, Bytes(65535, 255));
    ExpectDisplay({.width = 1, .height = 65535, .bytes = Bytes(65535, 9)}, Bytes(65535, 255));
}

TEST(DisplayConversion, NotesBigEndianFrames)
{
    for (const TypeRow& row : typeRows)
    {
        SCOPED_TRACE(static_cast<uint32_t>(row.type));
        StoredFrame frame = FourByTwo(row.type);
        frame.bytes.resize(row.frameBytes);
        const Lines littleEndianLines = ConvertFrame(frame).lines;
        frame.byteOrder = ByteOrder::BigEndian;
        Lines bigEndianLines = littleEndianLines;
        bigEndianLines.insert(bigEndianLines.begin(), bigEndian);
        EXPECT_EQ(ConvertFrame(frame).lines, bigEndianLines);
    }
}

TEST(DisplayConversion, RefusesUnknownPixelTypesSilently)
{
    for (const uint32_t value : {0U, 15U, 16U, 0xFFFFFFFFU})
    {
        SCOPED_TRACE(value);
        FrameReader reader{FourByTwo(static_cast<PixelType>(value))};
        TestStream stream{Bytes(1000)};
        const Conversion conversion{reader, &stream, 1000, 0};
        EXPECT_FALSE(conversion.shown);
        EXPECT_EQ(conversion.lines, Lines{});
        EXPECT_EQ(reader.displayPixels, earlierPicture);

        reader.byteOrder = ByteOrder::BigEndian;
        const Conversion noted{reader, &stream, 1000, 0};
        EXPECT_FALSE(noted.shown);
        EXPECT_EQ(noted.lines, Lines{bigEndian});
    }
}

TEST(DisplayConversion, NeedsTheFrameToTheLastByte)
{
    constexpr uint64_t dataOffset = 5;
    for (const TypeRow& row : typeRows)
    {
        SCOPED_TRACE(static_cast<uint32_t>(row.type));
        FrameReader reader{FourByTwo(row.type)};
        const uint64_t enough = dataOffset + row.frameBytes;

        TestStream cutStream{Bytes(enough - 1)};
        const Conversion cut{reader, &cutStream, enough - 1, dataOffset};
        EXPECT_FALSE(cut.shown);
        EXPECT_EQ(cut.lines, failedToRead);
        EXPECT_EQ(reader.displayPixels, earlierPicture);
        EXPECT_EQ(cutStream.readCalls, 0U);

        TestStream wholeStream{Bytes(enough)};
        const Conversion whole{reader, &wholeStream, enough, dataOffset};
        EXPECT_TRUE(whole.shown);
        EXPECT_EQ(wholeStream.bytesRead, row.frameBytes);
        EXPECT_EQ(wholeStream.readCalls, 1U);
    }
}

TEST(DisplayConversion, RefusesAFrameThatBeginsBeyondTheStream)
{
    FrameReader reader{FourByTwo(PixelType::UInt8)};
    for (const uint64_t dataOffset : {uint64_t{93}, uint64_t{101}, UINT64_MAX, UINT64_MAX - 7})
    {
        SCOPED_TRACE(dataOffset);
        TestStream stream{Bytes(100)};
        const Conversion conversion{reader, &stream, 100, dataOffset};
        EXPECT_FALSE(conversion.shown);
        EXPECT_EQ(conversion.lines, failedToRead);
        EXPECT_EQ(stream.readCalls, 0U);
    }
}

TEST(DisplayConversion, TakesNoMemoryForAFrameThatTheStreamDoesNotHold)
{
    // 65535 x 65535 numbers of 16 bytes are 64 GiB: to ask for them would fail in another way.
    for (const uint32_t stride : {0U, 16U})
    {
        FrameReader reader{StoredFrame{.pixelType = PixelType::Complex128,
                                       .width = 65535,
                                       .height = 65535,
                                       .xStride = stride,
                                       .yStride = stride}};
        TestStream stream{Bytes(100)};
        const Conversion conversion{reader, &stream, 100, 0};
        EXPECT_FALSE(conversion.shown);
        EXPECT_EQ(conversion.lines, failedToRead);
    }
}

TEST(DisplayConversion, RefusesFramesFrom4GiBOn)
{
    struct Row
    {
        PixelType type;
        uint32_t width;
        uint32_t height;
    };
    constexpr Row rows[] = {
        {PixelType::UInt32, 32768, 32768}, // 2^32 bytes, so the low 32 bits of the size are 0
        {PixelType::RGBA32, 32768, 32768}, {PixelType::Double64, 32768, 16384},
        {PixelType::UInt16, 32769, 65535}, // little more than 2^32
        {PixelType::RGB24, 65535, 65535},  {PixelType::Complex128, 65535, 65535},
    };
    for (const Row& row : rows)
    {
        for (const uint32_t stride : {0U, 1U})
        {
            SCOPED_TRACE(testing::Message() << static_cast<uint32_t>(row.type) << ", stride " << stride);
            FrameReader reader{StoredFrame{
                .pixelType = row.type, .width = row.width, .height = row.height, .xStride = stride}};
            constexpr uint64_t claimedSize = uint64_t{1} << 40;
            TestStream stream{Bytes(100), {.reportedSize = claimedSize}};
            const Conversion conversion{reader, &stream, claimedSize, 0};
            EXPECT_FALSE(conversion.shown);
            EXPECT_EQ(conversion.lines, failedToRead);
            EXPECT_EQ(stream.readCalls, 0U);
        }
    }
}

TEST(DisplayConversion, FailsWhenTheStreamFails)
{
    struct Row
    {
        const char* what;
        StreamFaults faults;
    };
    const Row rows[] = {
        {"Stat fails", {.failStatAt = 1}},
        {"Seek fails", {.failSeekAt = 1}},
        {"Read fails", {.failReadAt = 1}},
        {"Read delivers one byte less", {.longestRead = 7}},
        {"Read delivers nothing", {.longestRead = 0}},
        {"Read reports one byte more", {.extraCountReported = 1}},
        {"Read reports one byte less", {.extraCountReported = -1}},
        {"Stat now tells a smaller size", {.reportedSize = 7}},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.what);
        FrameReader reader{FourByTwo(PixelType::UInt8)};
        TestStream stream{Bytes(8), row.faults};
        const Conversion conversion{reader, &stream, 8, 0};
        EXPECT_FALSE(conversion.shown);
        EXPECT_EQ(conversion.lines, failedToRead);
        EXPECT_EQ(reader.displayPixels, earlierPicture);
        EXPECT_EQ(stream.references, 0U);
    }
}

TEST(DisplayConversion, FailsWithoutAStream)
{
    FrameReader reader{FourByTwo(PixelType::UInt8)};
    const Conversion conversion{reader, nullptr, 8, 0};
    EXPECT_FALSE(conversion.shown);
    EXPECT_EQ(conversion.lines, failedToRead);
}

TEST(DisplayConversion, GoesByTheSizeThatItsCallerKnows)
{
    FrameReader reader{FourByTwo(PixelType::UInt8)};
    TestStream stream{Bytes(8)};
    const Conversion conversion{reader, &stream, 7, 0};
    EXPECT_FALSE(conversion.shown);
    EXPECT_EQ(conversion.lines, failedToRead);
}

TEST(DisplayConversion, TakesOtherSuccessCodesAsSuccess)
{
    FrameReader reader{FourByTwo(PixelType::UInt8)};
    TestStream stream{Bytes(8), {.success = S_FALSE}};
    const Conversion conversion{reader, &stream, 8, 0};
    EXPECT_TRUE(conversion.shown);
    EXPECT_EQ(reader.displayPixels, Bytes(8));
}

TEST(DisplayConversion, ReplacesAnEarlierPicture)
{
    FrameReader reader{FourByTwo(PixelType::UInt8)};
    TestStream stream{Bytes(8, 77)};
    const Conversion conversion{reader, &stream, 8, 0};
    EXPECT_TRUE(conversion.shown);
    EXPECT_EQ(reader.displayPixels, Bytes(8, 255));
}

} // namespace
