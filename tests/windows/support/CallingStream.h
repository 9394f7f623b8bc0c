#pragma once

#include "support/streams/TestStream.h"

#include <cstdint>
#include <functional>
#include <utility>

/// A stream whose next read first makes a call.
class CallingStream : public TestStream
{
public:
    using TestStream::TestStream;

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* countRead) override
    {
        if (readsBefore > 0)
            --readsBefore;
        else if (const std::function<void()> call = std::exchange(beforeRead, {}))
            call();
        return TestStream::Read(buffer, count, countRead);
    }

    std::function<void()> beforeRead;
    /// The reads that come first, and make no call.
    uint32_t readsBefore = 0;
};
