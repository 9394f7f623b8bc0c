#include "core/stream/StreamReader.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/SparseStream.h"
#include "support/streams/TestStream.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

TEST(GetStreamSize, GivesTheSizeThatTheStreamTells)
{
    TestStream stream{Bytes(7)};
    uint64_t size = 0;
    EXPECT_TRUE(GetStreamSize(&stream, &size));
    EXPECT_EQ(size, 7U);
    EXPECT_EQ(stream.statFlags, DWORD{STATFLAG_NONAME});
    EXPECT_EQ(stream.seekCalls + stream.readCalls, 0U);
    EXPECT_EQ(stream.references, 0U);

    TestStream huge{{}, {.reportedSize = UINT64_MAX, .success = S_FALSE}};
    EXPECT_TRUE(GetStreamSize(&huge, &size));
    EXPECT_EQ(size, UINT64_MAX);
}

TEST(GetStreamSize, FailsWithoutAStreamOrItsAnswer)
{
    DiagnosticLines diagnostics;
    TestStream stream{Bytes(7), {.failStatAt = 1}};
    uint64_t size = 99;
    EXPECT_FALSE(GetStreamSize(nullptr, &size));
    EXPECT_FALSE(GetStreamSize(&stream, &size));
    EXPECT_EQ(size, 99U);
    EXPECT_EQ(diagnostics.Take(), Lines{});
}

TEST(ReadStreamAt, ReadsExactlyTheBytesAtTheOffset)
{
    TestStream stream{{1, 2, 3, 4, 5, 6}};
    std::array<uint8_t, 4> buffer = {9, 9, 9, 9};
    EXPECT_TRUE(ReadStreamAt(&stream, 1, buffer.data(), 3));
    EXPECT_EQ(buffer, (std::array<uint8_t, 4>{2, 3, 4, 9}));
    EXPECT_EQ(stream.statFlags, DWORD{STATFLAG_NONAME});
    EXPECT_EQ(stream.statCalls, 1U);
    EXPECT_EQ(stream.seekCalls, 1U);
    EXPECT_EQ(stream.readCalls, 1U);
    EXPECT_EQ(stream.references, 0U);
}

TEST(ReadStreamAt, ReadsUpToTheEndAndNotBeyond)
{
    TestStream stream{{1, 2, 3, 4, 5, 6}};
    std::array<uint8_t, 8> buffer = {};
    EXPECT_TRUE(ReadStreamAt(&stream, 2, buffer.data(), 4));
    EXPECT_TRUE(ReadStreamAt(&stream, 0, buffer.data(), 6));
    EXPECT_TRUE(ReadStreamAt(&stream, 6, buffer.data(), 0));
    EXPECT_EQ(stream.seekCalls, 3U);

    EXPECT_FALSE(ReadStreamAt(&stream, 3, buffer.data(), 4));
    EXPECT_FALSE(ReadStreamAt(&stream, 0, buffer.data(), 7));
    EXPECT_FALSE(ReadStreamAt(&stream, 7, buffer.data(), 0));
    // The sums of these wrap to what the stream holds.
    EXPECT_FALSE(ReadStreamAt(&stream, UINT64_MAX, buffer.data(), 1));
    EXPECT_FALSE(ReadStreamAt(&stream, UINT64_MAX - 3, buffer.data(), 8));
    EXPECT_EQ(stream.seekCalls, 3U);
    EXPECT_EQ(stream.readCalls, 3U);
}

TEST(ReadStreamAt, ReadsBehind4GiB)
{
    constexpr uint64_t place = (uint64_t{5} << 32) + 3;
    SparseStream stream{place + 4, {7, 7, 7, 7, 7, 7, 7, 7}, place, {1, 2, 3, 4}};
    std::array<uint8_t, 4> buffer = {};
    EXPECT_TRUE(ReadStreamAt(&stream, place, buffer.data(), 4));
    EXPECT_EQ(buffer, (std::array<uint8_t, 4>{1, 2, 3, 4}));
}

TEST(ReadStreamAt, FailsSilentlyWithoutAStreamOrOnAnyFault)
{
    DiagnosticLines diagnostics;
    std::array<uint8_t, 4> buffer = {};
    EXPECT_FALSE(ReadStreamAt(nullptr, 0, buffer.data(), 0));
    const StreamFaults faultRows[] = {
        {.failStatAt = 1},  {.failSeekAt = 1},          {.failReadAt = 1},         {.longestRead = 3},
        {.longestRead = 0}, {.extraCountReported = -1}, {.extraCountReported = 1}, {.reportedSize = 3},
    };
    for (const StreamFaults& faults : faultRows)
    {
        TestStream stream{{1, 2, 3, 4}, faults};
        EXPECT_FALSE(ReadStreamAt(&stream, 0, buffer.data(), 4));
        EXPECT_EQ(stream.references, 0U);
    }
    TestStream cut{{1, 2, 3}, {.reportedSize = 4}};
    EXPECT_FALSE(ReadStreamAt(&cut, 0, buffer.data(), 4));
    EXPECT_EQ(diagnostics.Take(), Lines{});
}

TEST(ReadStreamAt, TakesOtherSuccessCodesAsSuccess)
{
    TestStream stream{{1, 2, 3, 4}, {.success = S_FALSE}};
    std::array<uint8_t, 4> buffer = {};
    EXPECT_TRUE(ReadStreamAt(&stream, 0, buffer.data(), 4));
}

TEST(ReadStreamAt, LeavesAReaderOnTheSameStreamAlone)
{
    TestStream stream{{1, 2, 3, 4}};
    StreamReader reader{&stream};
    std::array<uint8_t, 2> buffer = {};
    ASSERT_TRUE(reader.GoTo(1));
    EXPECT_TRUE(ReadStreamAt(&stream, 2, buffer.data(), 2));
    EXPECT_EQ(reader.Position(), 1U);
    EXPECT_EQ(reader.ReadNumber<uint8_t>(ByteOrder::LittleEndian), 2);
}

TEST(ToLower, LowersTheLettersOfTheDefaultLocaleOnly)
{
    std::string text;
    std::string lowered;
    for (int code = 0; code < 256; ++code)
    {
        text.push_back(static_cast<char>(code));
        lowered.push_back(static_cast<char>(code >= 'A' && code <= 'Z' ? code + 32 : code));
    }
    EXPECT_EQ(ToLower(text), lowered);
    EXPECT_EQ(ToLower(""), "");
    EXPECT_EQ(ToLower("Mixed Case 123_[]"), "mixed case 123_[]");
}

} // namespace
