#pragma once

#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"

#include "core/RawImage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// One read by one format's reader: what it gave, what it found, what it wrote and what it asked of the
/// stream. The reader stays here after a failure, so a test can see how far it came.
template <typename Reader>
struct FileRead
{
    explicit FileRead(Bytes file, uint32_t mode = 1, uint32_t frameIndex = 0, StreamFaults faults = {})
        : stream(std::move(file), faults)
    {
        DiagnosticLines diagnostics;
        const uint64_t streamSize = faults.reportedSize.value_or(stream.bytes.size());
        succeeded = reader.Read(&stream, streamSize, mode, frameIndex);
        lines = diagnostics.Take();
        EXPECT_EQ(stream.references, 0U);
    }

    TestStream stream;
    Reader reader;
    bool succeeded = false;
    Lines lines;
};

/// One opening of a file of any format, as the shell and WIC open it.
struct FileOpen
{
    explicit FileOpen(Bytes file, uint32_t mode = 1, uint32_t frameIndex = 0, StreamFaults faults = {})
        : stream(std::move(file), faults)
    {
        DiagnosticLines diagnostics;
        succeeded = image.Open(&stream, mode, frameIndex);
        lines = diagnostics.Take();
        EXPECT_EQ(stream.references, 0U);
        EXPECT_EQ(image.Reader() != nullptr, succeeded);
    }

    TestStream stream;
    Tav::Imaging::RawImage::RawImage image;
    bool succeeded = false;
    Lines lines;
};
