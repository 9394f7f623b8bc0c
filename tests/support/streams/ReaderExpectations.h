#pragma once

#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

/// What is expected of the facts of a reader, such as HasFacts({...}).
using FactsMatcher = testing::Matcher<const Tav::Imaging::RawImage::RawImageBase&>;

/// The lines for a frame that the stream does not hold, and for a size that no picture has.
// Not inline: tables of tests are made from these, and inline variables may be made after them.
const std::string cannotReadImage = "[Lumora] Failed to read the image data into memory";
const std::string invalidResolution = "[Lumora] Invalid resolution";

/// Expects that a frame is refused with these lines whether it is wanted or its header alone, and the facts
/// that are known by then. `what` tells in a report which file it was.
template <typename Reader, typename What = const char*>
void ExpectRefusal(const Bytes& file, const Lines& lines, const What& what = "",
                   const FactsMatcher& facts = testing::_, uint32_t frameIndex = 0)
{
    SCOPED_TRACE(testing::Message() << what);
    for (const uint32_t mode : {0U, 1U})
    {
        const FileRead<Reader> read{file, mode, frameIndex};
        EXPECT_FALSE(read.succeeded);
        EXPECT_EQ(read.lines, lines);
        EXPECT_THAT(read.reader, facts);
        EXPECT_EQ(read.reader.readMode, mode);
        EXPECT_THAT(read.reader.displayPixels, testing::IsEmpty());
    }
}

/// Expects that the facts of a frame are read without a line, and that the frame is refused with this one.
template <typename Reader>
void ExpectFactsWithoutFrame(const Bytes& file, uint32_t frameIndex, const std::string& line,
                             const FactsMatcher& facts = testing::_)
{
    const FileRead<Reader> header{file, 0, frameIndex};
    EXPECT_TRUE(header.succeeded);
    EXPECT_THAT(header.reader, facts);
    EXPECT_THAT(header.lines, testing::IsEmpty());

    const FileRead<Reader> frame{file, 1, frameIndex};
    EXPECT_FALSE(frame.succeeded);
    EXPECT_THAT(frame.lines, testing::ElementsAre(line));
    EXPECT_THAT(frame.reader.displayPixels, testing::IsEmpty());
}

/// Expects that the facts take the first window of a file that is longer, and a frame its own bytes besides.
template <typename Reader>
void ExpectReadsOfOneWindow(const Bytes& file, uint32_t frameIndex, uint64_t frameBytes)
{
    constexpr uint64_t windowBytes = 0x400000;
    const FileRead<Reader> header{file, 0, frameIndex};
    EXPECT_TRUE(header.succeeded);
    EXPECT_EQ(header.stream.readCalls, 1U);
    EXPECT_EQ(header.stream.seekCalls, 1U);
    EXPECT_EQ(header.stream.bytesRead, windowBytes);

    const FileRead<Reader> frame{file, 1, frameIndex};
    EXPECT_TRUE(frame.succeeded);
    EXPECT_EQ(frame.stream.readCalls, 2U);
    EXPECT_EQ(frame.stream.seekCalls, 2U);
    EXPECT_EQ(frame.stream.bytesRead, windowBytes + frameBytes);
}
