#include "support/display/FrameReader.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/SparseStream.h"
#include "support/streams/TestStream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

/// The first `sampleBytes` bytes of what is read at `dataOffset`; nothing when that fails. Reading samples
/// writes no line either way.
std::optional<Bytes> Read(const StoredFrame& frame, size_t sampleBytes, uint64_t dataOffset = 0)
{
    const FrameReader reader{frame};
    TestStream stream{frame.bytes};
    FrameBytes samples;
    DiagnosticLines diagnostics;
    const bool wasRead = reader.ReadFramePixels(samples, &stream, frame.bytes.size(), dataOffset);
    EXPECT_EQ(diagnostics.Take(), Lines{});
    EXPECT_EQ(stream.references, 0U);
    if (!wasRead)
        return std::nullopt;
    EXPECT_GE(samples.size(), sampleBytes);
    return Bytes(samples.begin(), samples.begin() + sampleBytes);
}

TEST(ReadFramePixels, ReadsPackedSamplesAtTheirOffset)
{
    const StoredFrame frame = {
        .pixelType = PixelType::UInt16, .width = 2, .height = 1, .bytes = {9, 1, 2, 3, 4, 9}};
    EXPECT_EQ(Read(frame, 4, 1), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Read(frame, 4, 2), (Bytes{2, 3, 4, 9}));
    EXPECT_EQ(Read(frame, 4, 3), std::nullopt);
}

TEST(ReadFramePixels, LeavesTheBytesAsTheStreamOrdersThem)
{
    const StoredFrame frame = {.pixelType = PixelType::Float32,
                               .width = 1,
                               .height = 1,
                               .bytes = {1, 2, 3, 4},
                               .byteOrder = ByteOrder::BigEndian,
                               .flipVertical = true};
    EXPECT_EQ(Read(frame, 4), (Bytes{1, 2, 3, 4}));
}

TEST(ReadFramePixels, ReadsExactlyTheFrame)
{
    struct Row
    {
        PixelType type;
        size_t bytes;
    };
    // Frames of 5 x 3 samples; two 4-bit samples share a byte, and the odd one gets none.
    constexpr Row rows[] = {
        {PixelType::UInt4, 7},       {PixelType::UInt8, 15},       {PixelType::Int8, 15},
        {PixelType::UInt16, 30},     {PixelType::Int16, 30},       {PixelType::Float16, 30},
        {PixelType::UInt32, 60},     {PixelType::Int32, 60},       {PixelType::Float32, 60},
        {PixelType::RGBA32, 60},     {PixelType::RGB24, 45},       {PixelType::Double64, 120},
        {PixelType::Complex64, 120}, {PixelType::Complex128, 240},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(static_cast<uint32_t>(row.type));
        const FrameReader reader{StoredFrame{.pixelType = row.type, .width = 5, .height = 3}};
        TestStream stream{Bytes(1000, 3)};
        FrameBytes samples;
        EXPECT_TRUE(reader.ReadFramePixels(samples, &stream, 1000, 10));
        EXPECT_EQ(samples, Bytes(row.bytes, 3));
        EXPECT_EQ(stream.bytesRead, row.bytes);
        EXPECT_EQ(stream.seekCalls, 1U);
        EXPECT_EQ(stream.readCalls, 1U);
    }
}

TEST(ReadFramePixels, GathersColumnsByTheirStrides)
{
    // Stored column by column.
    const StoredFrame frame = {.pixelType = PixelType::UInt8,
                               .width = 3,
                               .height = 2,
                               .bytes = {1, 2, 3, 4, 5, 6},
                               .xStride = 2,
                               .yStride = 1};
    EXPECT_EQ(Read(frame, 6), (Bytes{1, 3, 5, 2, 4, 6}));

    const StoredFrame wideSamples = {.pixelType = PixelType::UInt16,
                                     .width = 2,
                                     .height = 2,
                                     .bytes = {1, 2, 3, 4, 5, 6, 7, 8},
                                     .xStride = 4,
                                     .yStride = 2};
    EXPECT_EQ(Read(wideSamples, 8), (Bytes{1, 2, 5, 6, 3, 4, 7, 8}));
}

TEST(ReadFramePixels, TakesOneStrideAloneAsSampleOrRowDistance)
{
    const Bytes bytes = {1, 2, 3, 4};
    EXPECT_EQ(Read({.width = 2, .height = 2, .bytes = bytes, .xStride = 1}, 4), (Bytes{1, 2, 1, 2}));
    EXPECT_EQ(Read({.width = 2, .height = 2, .bytes = bytes, .yStride = 1}, 4), (Bytes{1, 1, 2, 2}));
}

TEST(ReadFramePixels, WrapsStridesAtTheFrameSize)
{
    // Rows of two samples with a gap of one byte: positions 0, 1, 3, 4, 6 and 7 of a frame of 6 bytes.
    const StoredFrame padded = {.pixelType = PixelType::UInt8,
                                .width = 2,
                                .height = 3,
                                .bytes = {1, 2, 3, 4, 5, 6, 7, 8, 9},
                                .xStride = 1,
                                .yStride = 3};
    EXPECT_EQ(Read(padded, 6), (Bytes{1, 2, 4, 5, 1, 2}));
}

TEST(ReadFramePixels, WrapsASampleThatReachesBeyondTheFrame)
{
    // The second sample begins with the last byte of the frame and goes on with the first.
    const StoredFrame frame = {
        .pixelType = PixelType::UInt16, .width = 2, .height = 1, .bytes = {1, 2, 3, 4, 9, 9}, .xStride = 3};
    EXPECT_EQ(Read(frame, 4), (Bytes{1, 2, 4, 1}));

    const StoredFrame wideSamples = {.pixelType = PixelType::Double64,
                                     .width = 1,
                                     .height = 2,
                                     .bytes = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16},
                                     .yStride = 11};
    EXPECT_EQ(Read(wideSamples, 16), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 14, 15, 16, 1, 2, 3}));
}

TEST(ReadFramePixels, AddsPositionsIn64Bits)
{
    // 2^32 - 1 is 3 modulo 7, so the positions are 0, 3, 6, 9 … modulo 7. Cut to 32 bits they were others.
    const StoredFrame frame = {.pixelType = PixelType::UInt8,
                               .width = 7,
                               .height = 1,
                               .bytes = {0, 1, 2, 3, 4, 5, 6},
                               .xStride = 0xFFFFFFFF};
    EXPECT_EQ(Read(frame, 7), (Bytes{0, 3, 6, 2, 5, 1, 4}));
}

TEST(ReadFramePixels, ReadsToTheEndOfTheStreamWithStrides)
{
    const FrameReader reader{StoredFrame{.width = 2, .height = 2, .xStride = 1, .yStride = 2}};
    TestStream stream{Bytes{9, 9, 1, 2, 3, 4, 5, 6, 7}};
    FrameBytes samples;
    EXPECT_TRUE(reader.ReadFramePixels(samples, &stream, stream.bytes.size(), 2));
    EXPECT_EQ(stream.bytesRead, 7U);
    EXPECT_EQ(samples, (Bytes{1, 2, 3, 4, 5, 6, 7}));
}

TEST(ReadFramePixels, CountsTheBytesToTheEndOfTheStreamIn32Bits)
{
    const FrameReader reader{StoredFrame{.width = 2, .height = 2, .xStride = 1, .yStride = 2}};
    constexpr uint64_t fourGiB = uint64_t{1} << 32;
    constexpr uint64_t dataOffset = 2;
    FrameBytes samples;

    SparseStream enough{fourGiB + dataOffset + 4, {9, 9, 1, 2, 3, 4, 5}, fourGiB, {}};
    EXPECT_TRUE(reader.ReadFramePixels(samples, &enough, fourGiB + dataOffset + 4, dataOffset));
    EXPECT_EQ(samples, (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(enough.bytesRead, 4U);

    SparseStream tooFew{fourGiB + dataOffset + 3, {9, 9, 1, 2, 3, 4, 5}, fourGiB, {}};
    EXPECT_FALSE(reader.ReadFramePixels(samples, &tooFew, fourGiB + dataOffset + 3, dataOffset));
    EXPECT_EQ(tooFew.readCalls, 0U);
}

TEST(ReadFramePixels, ReadsFramesBehind4GiB)
{
    constexpr uint64_t dataOffset = (uint64_t{1} << 33) + 5;
    for (const uint32_t stride : {0U, 1U})
    {
        const FrameReader reader{StoredFrame{.width = 3, .height = 1, .xStride = stride}};
        SparseStream stream{dataOffset + 3, {}, dataOffset, {1, 2, 3}};
        FrameBytes samples;
        EXPECT_TRUE(reader.ReadFramePixels(samples, &stream, dataOffset + 3, dataOffset));
        EXPECT_EQ(samples, (Bytes{1, 2, 3}));
    }
}

TEST(ReadFramePixels, NeedsAWholeFrameWithStrides)
{
    for (const size_t size : {0U, 1U, 3U})
    {
        SCOPED_TRACE(size);
        EXPECT_EQ(Read({.width = 2, .height = 2, .bytes = Bytes(size), .xStride = 1}, 4), std::nullopt);
    }
    EXPECT_EQ(Read({.width = 2, .height = 2, .bytes = Bytes(4), .xStride = 1}, 4), Bytes(4));
    // Packed, four 4-bit samples take two bytes; with strides they are spread one to a byte.
    const StoredFrame nibbles = {
        .pixelType = PixelType::UInt4, .width = 2, .height = 2, .bytes = {1, 2, 3}, .xStride = 1};
    EXPECT_EQ(Read(nibbles, 4), std::nullopt);
}

TEST(ReadFramePixels, GathersOneByteForEach4BitSampleWithStrides)
{
    const StoredFrame nibbles = {.pixelType = PixelType::UInt4,
                                 .width = 2,
                                 .height = 2,
                                 .bytes = {0xF0, 0x11, 0x0F, 0x33},
                                 .xStride = 2,
                                 .yStride = 1};
    EXPECT_EQ(Read(nibbles, 4), (Bytes{0xF0, 0x0F, 0x11, 0x33}));
    // The picture is made from the first half of those.
    ExpectDisplay(nibbles, {0, 255, 255, 0});
}

TEST(ReadFramePixels, GrowsTheBufferAndNeverShrinksIt)
{
    const FrameReader reader{StoredFrame{.width = 2, .height = 1}};
    TestStream stream{Bytes{1, 2, 3}};
    FrameBytes samples{Bytes(5, 9)};
    EXPECT_TRUE(reader.ReadFramePixels(samples, &stream, 3, 0));
    EXPECT_EQ(samples, (Bytes{1, 2, 9, 9, 9}));
}

TEST(ReadFramePixels, TakesNoMemoryForAFrameThatIsNotThere)
{
    // The first frame is a little smaller than 4 GiB, the second one larger.
    for (const PixelType type : {PixelType::UInt8, PixelType::UInt16})
    {
        for (const uint32_t stride : {0U, 1U})
        {
            for (const uint64_t dataOffset : {uint64_t{0}, uint64_t{10}, uint64_t{11}, UINT64_MAX})
            {
                SCOPED_TRACE(dataOffset);
                const FrameReader reader{StoredFrame{.pixelType = type,
                                                     .width = 65535,
                                                     .height = 65535,
                                                     .xStride = stride,
                                                     .yStride = stride}};
                TestStream stream{Bytes(10)};
                FrameBytes samples;
                EXPECT_FALSE(reader.ReadFramePixels(samples, &stream, 10, dataOffset));
                EXPECT_EQ(samples.data(), nullptr);
                EXPECT_EQ(stream.readCalls, 0U);
            }
        }
    }
}

TEST(ReadFramePixels, FailsWithoutAStream)
{
    const FrameReader reader{StoredFrame{.width = 1, .height = 1}};
    FrameBytes samples;
    EXPECT_FALSE(reader.ReadFramePixels(samples, nullptr, 100, 0));
}

} // namespace
