#include "core/stream/StreamReader.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <typeinfo>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

constexpr uint64_t windowBytes = 0x400000;
static_assert(StreamReader::maximumWindowBytes == windowBytes);
static_assert(std::has_virtual_destructor_v<StreamReader>);

/// `count` bytes that differ from their neighbours and from those a few windows away.
Bytes Numbered(size_t count)
{
    Bytes bytes(count);
    for (size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(i ^ (i >> 8) ^ (i >> 16) ^ (i >> 20));
    return bytes;
}

Bytes Part(const Bytes& bytes, size_t offset, size_t count)
{
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
}

/// The bytes that a reader gives, for comparing; none for a failed read.
Bytes ReadBytes(StreamReader& reader, size_t count)
{
    const auto bytes = reader.ReadBytes(count);
    return bytes ? Bytes{bytes->begin(), bytes->end()} : Bytes{};
}

template <typename Error>
void ExpectConstructionThrows(IStream* stream, const char* words)
{
    DiagnosticLines diagnostics;
    try
    {
        const StreamReader reader{stream};
        ADD_FAILURE() << "nothing was thrown";
    }
    catch (const std::exception& error)
    {
        EXPECT_EQ(typeid(error), typeid(Error));
        EXPECT_STREQ(error.what(), words);
    }
    EXPECT_EQ(diagnostics.Take(), Lines{});
}

TEST(StreamReader, ReadsASmallStreamWholeAtOnce)
{
    TestStream stream{{1, 2, 3, 4, 5}};
    const StreamReader reader{&stream};
    EXPECT_EQ(reader.stream.Get(), &stream);
    EXPECT_EQ(reader.streamSize, 5U);
    EXPECT_EQ(reader.windowLength, 5U);
    EXPECT_EQ(reader.windowStart, 0U);
    EXPECT_EQ(reader.cursor, 0U);
    EXPECT_EQ(reader.Position(), 0U);
    EXPECT_EQ(reader.window, (Bytes{1, 2, 3, 4, 5}));
    EXPECT_EQ(stream.seekCalls, 1U);
    EXPECT_EQ(stream.readCalls, 1U);
    EXPECT_EQ(stream.statFlags, DWORD{STATFLAG_NONAME});
}

TEST(StreamReader, HoldsOneReferenceWhileItLives)
{
    TestStream stream{{1}};
    {
        const StreamReader reader{&stream};
        EXPECT_EQ(stream.references, 1U);
    }
    EXPECT_EQ(stream.references, 0U);
}

TEST(StreamReader, AcceptsAnEmptyStream)
{
    TestStream stream{{}};
    StreamReader reader{&stream};
    EXPECT_EQ(reader.streamSize, 0U);
    EXPECT_EQ(reader.windowLength, 0U);
    EXPECT_FALSE(reader.ReadBytes(1).has_value());
    EXPECT_TRUE(reader.LoadWindow(0));
    EXPECT_FALSE(reader.LoadWindow(1));
}

TEST(StreamReader, ReadsFromTheStartWhereverTheStreamStands)
{
    TestStream stream{{1, 2, 3}};
    stream.position = 2;
    const StreamReader reader{&stream};
    EXPECT_EQ(reader.window, (Bytes{1, 2, 3}));
}

TEST(StreamReader, ThrowsWithoutAStream)
{
    ExpectConstructionThrows<std::invalid_argument>(nullptr, "NULL Pointer");
}

TEST(StreamReader, ThrowsAndReleasesTheStreamWhenItCannotBeRead)
{
    struct Row
    {
        const char* what;
        StreamFaults faults;
        const char* words;
    };
    const Row rows[] = {
        {"Stat fails", {.failStatAt = 1}, "Could not get file size"},
        {"Seek fails", {.failSeekAt = 1}, "Could not read file"},
        {"Read fails", {.failReadAt = 1}, "Could not read file"},
        {"Read delivers one byte less", {.longestRead = 4}, "Could not read file"},
        {"Read delivers nothing", {.longestRead = 0}, "Could not read file"},
        {"Read reports one byte less", {.extraCountReported = -1}, "Could not read file"},
        {"Read reports one byte more", {.extraCountReported = 1}, "Could not read file"},
        {"Stat tells one byte too many", {.reportedSize = 6}, "Could not read file"},
        {"Stat tells far too many bytes", {.reportedSize = UINT64_MAX}, "Could not read file"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.what);
        TestStream stream{{1, 2, 3, 4, 5}, row.faults};
        ExpectConstructionThrows<std::runtime_error>(&stream, row.words);
        EXPECT_EQ(stream.references, 0U);
    }
}

TEST(StreamReader, TakesOtherSuccessCodesAsSuccess)
{
    TestStream stream{{1, 2, 3}, {.success = S_FALSE}};
    StreamReader reader{&stream};
    EXPECT_EQ(ReadBytes(reader, 3), (Bytes{1, 2, 3}));
}

TEST(StreamReader, ReadsOnlyWhatTheStreamSaysItHolds)
{
    TestStream stream{{1, 2, 3, 4, 5}, {.reportedSize = 3}};
    StreamReader reader{&stream};
    EXPECT_EQ(reader.streamSize, 3U);
    EXPECT_EQ(stream.bytesRead, 3U);
    EXPECT_EQ(ReadBytes(reader, 3), (Bytes{1, 2, 3}));
    EXPECT_FALSE(reader.ReadBytes(1).has_value());
}

TEST(StreamReader, ReadsAStreamOfOneWindowWhole)
{
    TestStream stream{Numbered(windowBytes)};
    StreamReader reader{&stream};
    EXPECT_EQ(reader.windowLength, windowBytes);
    EXPECT_EQ(reader.window.size(), windowBytes);
    EXPECT_EQ(ReadBytes(reader, windowBytes), stream.bytes);
    EXPECT_EQ(stream.readCalls, 1U);
    EXPECT_FALSE(reader.ReadBytes(1).has_value());
    EXPECT_EQ(stream.readCalls, 1U);
}

TEST(StreamReader, ReadsTheByteBehindOneWindowIntoASecond)
{
    TestStream stream{Numbered(windowBytes + 1)};
    StreamReader reader{&stream};
    EXPECT_EQ(reader.windowLength, windowBytes);
    EXPECT_TRUE(reader.ReadBytes(windowBytes).has_value());
    EXPECT_EQ(stream.bytesRead, windowBytes);

    EXPECT_EQ(ReadBytes(reader, 1), Part(stream.bytes, windowBytes, 1));
    EXPECT_EQ(reader.windowStart, windowBytes);
    EXPECT_EQ(reader.windowLength, 1U);
    EXPECT_EQ(reader.window.size(), 1U);
    EXPECT_EQ(reader.cursor, 1U);
    EXPECT_EQ(stream.seekCalls, 2U);
    EXPECT_EQ(stream.readCalls, 2U);
}

TEST(StreamReader, LoadsWindowsUpToTheEndOfTheStream)
{
    TestStream stream{Numbered(100)};
    StreamReader reader{&stream};

    EXPECT_TRUE(reader.LoadWindow(60));
    EXPECT_EQ(reader.windowStart, 60U);
    EXPECT_EQ(reader.windowLength, 40U);
    EXPECT_EQ(reader.cursor, 0U);
    EXPECT_EQ(reader.window, Part(stream.bytes, 60, 40));

    EXPECT_TRUE(reader.LoadWindow(100));
    EXPECT_EQ(reader.windowStart, 100U);
    EXPECT_EQ(reader.windowLength, 0U);
    EXPECT_TRUE(reader.window.empty());
    EXPECT_EQ(reader.Position(), 100U);
    EXPECT_FALSE(reader.ReadBytes(1).has_value());

    EXPECT_TRUE(reader.LoadWindow(0));
    EXPECT_EQ(reader.window, stream.bytes);
}

TEST(StreamReader, ChangesNothingForAWindowBeyondTheStream)
{
    TestStream stream{Numbered(100)};
    StreamReader reader{&stream};
    ASSERT_TRUE(reader.LoadWindow(60));
    ASSERT_TRUE(reader.ReadBytes(5).has_value());
    const uint32_t seekCalls = stream.seekCalls;
    for (const uint64_t offset : {uint64_t{101}, uint64_t{1} << 32, UINT64_MAX})
    {
        EXPECT_FALSE(reader.LoadWindow(offset));
        EXPECT_FALSE(reader.GoTo(offset));
    }
    EXPECT_EQ(stream.seekCalls, seekCalls);
    EXPECT_EQ(reader.windowStart, 60U);
    EXPECT_EQ(reader.windowLength, 40U);
    EXPECT_EQ(reader.cursor, 5U);
    EXPECT_EQ(ReadBytes(reader, 2), Part(stream.bytes, 65, 2));
}

TEST(StreamReader, HasMovedWhenAWindowCannotBeRead)
{
    const StreamFaults faultRows[] = {{.failSeekAt = 2}, {.failReadAt = 2}, {.longestRead = 69}};
    for (const StreamFaults& faults : faultRows)
    {
        TestStream stream{Numbered(100)};
        StreamReader reader{&stream};
        stream.faults = faults;
        EXPECT_FALSE(reader.LoadWindow(30));
        EXPECT_EQ(reader.windowStart, 30U);
        EXPECT_EQ(reader.windowLength, 70U);
        EXPECT_EQ(reader.cursor, 0U);
    }
}

TEST(StreamReader, LoadsAWindowAtAFieldThatReachesBeyondTheOld)
{
    TestStream stream{Numbered(windowBytes + 1000)};
    StreamReader reader{&stream};
    ASSERT_TRUE(reader.GoTo(windowBytes - 2));
    EXPECT_EQ(stream.readCalls, 1U);

    EXPECT_EQ(ReadBytes(reader, 4), Part(stream.bytes, windowBytes - 2, 4));
    EXPECT_EQ(stream.readCalls, 2U);
    EXPECT_EQ(reader.windowStart, windowBytes - 2);
    EXPECT_EQ(reader.windowLength, 1002U);
    EXPECT_EQ(reader.cursor, 4U);
    EXPECT_EQ(reader.Position(), windowBytes + 2);
}

TEST(StreamReader, LoadsNoWindowForAFieldThatEndsWithTheOld)
{
    TestStream stream{Numbered(windowBytes + 1000)};
    StreamReader reader{&stream};
    ASSERT_TRUE(reader.GoTo(windowBytes - 4));
    EXPECT_EQ(ReadBytes(reader, 4), Part(stream.bytes, windowBytes - 4, 4));
    EXPECT_EQ(stream.readCalls, 1U);
    EXPECT_EQ(reader.cursor, windowBytes);
}

TEST(StreamReader, FailsWithoutReadingWhenAFieldReachesBeyondTheStream)
{
    TestStream stream{{1, 2, 3, 4, 5}};
    StreamReader reader{&stream};
    ASSERT_TRUE(reader.GoTo(2));
    EXPECT_FALSE(reader.ReadBytes(4).has_value());
    EXPECT_FALSE(reader.ReadBytes(SIZE_MAX).has_value());
    EXPECT_FALSE(reader.ReadBytes(SIZE_MAX - 2).has_value());
    EXPECT_FALSE(reader.ReadNumber<uint32_t>(ByteOrder::LittleEndian).has_value());
    EXPECT_EQ(stream.readCalls, 1U);
    EXPECT_EQ(reader.Position(), 2U);
    EXPECT_EQ(ReadBytes(reader, 3), (Bytes{3, 4, 5}));
    EXPECT_FALSE(reader.ReadNumber<uint8_t>(ByteOrder::LittleEndian).has_value());
}

TEST(StreamReader, FailsWhenTheNextWindowCannotBeRead)
{
    const StreamFaults faultRows[] = {{.failSeekAt = 2}, {.failReadAt = 2}, {.longestRead = 999}};
    for (const StreamFaults& faults : faultRows)
    {
        TestStream stream{Bytes(windowBytes + 1000)};
        StreamReader reader{&stream};
        stream.faults = faults;
        ASSERT_TRUE(reader.GoTo(windowBytes - 1));
        EXPECT_FALSE(reader.ReadBytes(2).has_value());
    }
}

TEST(StreamReader, ReadsNumbersInEitherOrder)
{
    TestStream stream{{0x01, 0x82, 0x03, 0x84, 0x05, 0x86, 0x07, 0x88}};
    StreamReader reader{&stream};
    const auto little = ByteOrder::LittleEndian;
    const auto big = ByteOrder::BigEndian;
    const auto atStart = [&reader]<typename Number>(Number, ByteOrder order) {
        EXPECT_TRUE(reader.GoTo(0));
        return reader.ReadNumber<Number>(order);
    };
    EXPECT_EQ(atStart(uint8_t{}, little), 0x01);
    EXPECT_EQ(atStart(uint8_t{}, big), 0x01);
    EXPECT_EQ(atStart(uint16_t{}, little), 0x8201);
    EXPECT_EQ(atStart(uint16_t{}, big), 0x0182);
    EXPECT_EQ(atStart(uint32_t{}, little), 0x84038201U);
    EXPECT_EQ(atStart(uint32_t{}, big), 0x01820384U);
    EXPECT_EQ(atStart(uint64_t{}, little), 0x8807860584038201U);
    EXPECT_EQ(atStart(uint64_t{}, big), 0x0182038405860788U);
}

TEST(StreamReader, ReadsOneNumberAfterTheOther)
{
    TestStream stream{{1, 0, 2, 0, 0, 0, 3}};
    StreamReader reader{&stream};
    EXPECT_EQ(reader.ReadNumber<uint16_t>(ByteOrder::LittleEndian), 1);
    EXPECT_EQ(reader.ReadNumber<uint32_t>(ByteOrder::LittleEndian), 2U);
    EXPECT_EQ(reader.ReadNumber<uint8_t>(ByteOrder::LittleEndian), 3);
    EXPECT_EQ(reader.Position(), 7U);
    EXPECT_EQ(stream.readCalls, 1U);
}

TEST(StreamReader, GoesToAnOffsetWithinTheWindowWithoutReading)
{
    TestStream stream{Numbered(100)};
    StreamReader reader{&stream};
    for (const uint64_t offset : {uint64_t{99}, uint64_t{0}, uint64_t{50}})
    {
        EXPECT_TRUE(reader.GoTo(offset));
        EXPECT_EQ(reader.Position(), offset);
        EXPECT_EQ(ReadBytes(reader, 1), Part(stream.bytes, offset, 1));
    }
    EXPECT_EQ(stream.seekCalls, 1U);
    EXPECT_EQ(stream.readCalls, 1U);

    // The end is outside of every window.
    EXPECT_TRUE(reader.GoTo(100));
    EXPECT_EQ(reader.windowStart, 100U);
    EXPECT_EQ(reader.windowLength, 0U);
}

TEST(StreamReader, GoesToAnOffsetOutsideTheWindowByLoadingOne)
{
    TestStream stream{Numbered(windowBytes + 1000)};
    StreamReader reader{&stream};
    EXPECT_TRUE(reader.GoTo(windowBytes));
    EXPECT_EQ(reader.windowStart, windowBytes);
    EXPECT_EQ(stream.readCalls, 2U);
    EXPECT_EQ(ReadBytes(reader, 3), Part(stream.bytes, windowBytes, 3));

    // Backward, one byte before the window.
    EXPECT_TRUE(reader.GoTo(windowBytes - 1));
    EXPECT_EQ(reader.windowStart, windowBytes - 1);
    EXPECT_EQ(stream.readCalls, 3U);
    EXPECT_EQ(ReadBytes(reader, 3), Part(stream.bytes, windowBytes - 1, 3));

    EXPECT_TRUE(reader.GoTo(0));
    EXPECT_EQ(reader.windowLength, windowBytes);
    EXPECT_EQ(reader.window, Part(stream.bytes, 0, windowBytes));
}

TEST(StreamReader, WalksAStreamWithOneReadForEachWindow)
{
    TestStream stream{Numbered(3 * windowBytes)};
    StreamReader reader{&stream};
    Bytes walked;
    while (const auto bytes = reader.ReadBytes(1 << 16))
        walked.insert(walked.end(), bytes->begin(), bytes->end());
    EXPECT_TRUE(walked == stream.bytes);
    EXPECT_EQ(stream.seekCalls, 3U);
    EXPECT_EQ(stream.readCalls, 3U);
    EXPECT_EQ(stream.bytesRead, 3 * windowBytes);
}

TEST(StreamReader, KeepsItsBufferForWindowsOfTheSameLength)
{
    TestStream stream{Numbered(2 * windowBytes)};
    StreamReader reader{&stream};
    const uint8_t* const buffer = reader.window.data();
    EXPECT_TRUE(reader.LoadWindow(windowBytes));
    EXPECT_EQ(reader.window.data(), buffer);
    EXPECT_EQ(reader.window, Part(stream.bytes, windowBytes, windowBytes));
}

TEST(StreamReader, TakesTheFullWindowOfTheOneBefore)
{
    TestStream stream{Numbered(windowBytes + 1000)};
    const uint8_t* before = nullptr;
    {
        StreamReader reader{&stream};
        before = reader.window.data();
        // The window at the end is shorter.
        EXPECT_TRUE(reader.GoTo(windowBytes));
    }
    StreamReader reader{&stream};
    EXPECT_EQ(reader.window.data(), before);
    EXPECT_EQ(reader.window, Part(stream.bytes, 0, windowBytes));

    const StreamReader beside{&stream};
    EXPECT_NE(beside.window.data(), before);
    EXPECT_EQ(beside.window, Part(stream.bytes, 0, windowBytes));
}

TEST(StreamReader, LeavesAFullWindowToLongerStreams)
{
    TestStream longStream{Numbered(windowBytes)};
    TestStream shortStream{Numbered(windowBytes - 1)};
    const uint8_t* before = nullptr;
    {
        const StreamReader reader{&longStream};
        before = reader.window.data();
    }
    const StreamReader shortReader{&shortStream};
    EXPECT_NE(shortReader.window.data(), before);
    EXPECT_EQ(StreamReader{&longStream}.window.data(), before);
}

TEST(StreamReader, SharesNoWindowWithReadersOnOtherThreads)
{
    const auto read = [](uint8_t first) {
        TestStream stream{Bytes(windowBytes, first)};
        for (int round = 0; round < 50; ++round)
        {
            const StreamReader reader{&stream};
            ASSERT_EQ(reader.window, stream.bytes);
        }
    };
    std::vector<std::thread> threads;
    for (uint8_t number = 0; number < 4; ++number)
        threads.emplace_back(read, number);
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
