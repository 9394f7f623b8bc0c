#pragma once

#include "support/streams/DiagnosticLines.h"
#include "support/streams/SparseStream.h"

#include <gtest/gtest.h>

#include <cstdint>

/// One read by one format's reader of a stream that no memory could hold.
template <typename Reader>
struct SparseRead
{
    SparseRead(uint64_t size, const Bytes& start, uint64_t place, const Bytes& there, uint32_t mode = 1,
               uint32_t frameIndex = 0)
        : stream(size, start, place, there)
    {
        DiagnosticLines diagnostics;
        succeeded = reader.Read(&stream, size, mode, frameIndex);
        lines = diagnostics.Take();
        EXPECT_EQ(stream.references, 0U);
    }

    SparseStream stream;
    Reader reader;
    bool succeeded = false;
    Lines lines;
};
