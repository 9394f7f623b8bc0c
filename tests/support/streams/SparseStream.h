#pragma once

#include "support/streams/TestStream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

/// A stream of any size that holds bytes at its start and at one place far behind, and zeros elsewhere.
class SparseStream final : public TestStream
{
public:
    SparseStream(uint64_t size, Bytes start, uint64_t place, Bytes there)
        : TestStream(std::move(start), {.reportedSize = size}), farPlace(place), farBytes(std::move(there))
    {}

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* countRead) override
    {
        ++readCalls;
        const uint64_t left = position < *faults.reportedSize ? *faults.reportedSize - position : 0;
        const auto delivered = static_cast<ULONG>(std::min<uint64_t>(left, count));
        if (delivered > 0)
            std::memset(buffer, 0, delivered);
        Overlay(buffer, delivered, 0, bytes);
        Overlay(buffer, delivered, farPlace, farBytes);
        position += delivered;
        bytesRead += delivered;
        if (countRead)
            *countRead = delivered;
        return S_OK;
    }

private:
    /// Copies what of `source`, which stands at `place`, lies in the `count` bytes from the position on.
    void Overlay(void* buffer, uint64_t count, uint64_t place, const Bytes& source) const
    {
        const uint64_t first = std::max(position, place);
        const uint64_t end = std::min(position + count, place + source.size());
        if (first < end)
            std::memcpy(static_cast<uint8_t*>(buffer) + (first - position), source.data() + (first - place),
                        end - first);
    }

    uint64_t farPlace;
    Bytes farBytes;
};
