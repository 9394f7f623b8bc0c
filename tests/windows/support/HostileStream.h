#pragma once

#include "support/streams/TestStream.h"

#include <cstdint>

/// What goes wrong with a read. All but the first claim to have succeeded.
enum class ReadFault
{
    Fails,
    DeliversOneByteLess,
    DeliversNothing,
    ReportsOneByteMore,
    ReportsFarMore,
    ReportsNoCount,
};

/// A stream one of whose calls goes wrong in ways that the plain test stream does not know. Calls are counted
/// from 1, and 0 means none.
class HostileStream : public TestStream
{
public:
    using TestStream::TestStream;

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* countRead) override
    {
        const bool wrong = readCalls + 1 == wrongRead;
        if (readCalls + 1 == changedRead)
            bytes = changedBytes;
        if (wrong && readFault == ReadFault::Fails)
            faults.failReadAt = wrongRead;
        if (wrong && readFault == ReadFault::DeliversOneByteLess)
            --count;
        if (wrong && readFault == ReadFault::DeliversNothing)
            count = 0;
        ULONG delivered = 0;
        const HRESULT result = TestStream::Read(buffer, count, &delivered);
        if (wrong && readFault == ReadFault::ReportsOneByteMore)
            ++delivered;
        if (wrong && readFault == ReadFault::ReportsFarMore)
            delivered = 0xFFFFFFFF;
        if (countRead && !(wrong && readFault == ReadFault::ReportsNoCount))
            *countRead = delivered;
        return readCalls == falseRead ? S_FALSE : result;
    }

    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* newPosition) override
    {
        const HRESULT result = TestStream::Seek(move, origin, newPosition);
        return seekCalls == falseSeek ? S_FALSE : result;
    }

    HRESULT STDMETHODCALLTYPE Stat(STATSTG* statistics, DWORD flags) override
    {
        const HRESULT result = TestStream::Stat(statistics, flags);
        if (statCalls == wrongStat)
            statistics->cbSize.QuadPart = wrongSize;
        return statCalls == falseStat ? S_FALSE : result;
    }

    /// The read that goes wrong, and how.
    uint32_t wrongRead = 0;
    ReadFault readFault = ReadFault::Fails;
    /// The read before which the stream becomes another, as a file does that somebody writes over.
    uint32_t changedRead = 0;
    Bytes changedBytes;
    /// The question for the size that is answered wrongly, and the answer.
    uint32_t wrongStat = 0;
    uint64_t wrongSize = 0;
    /// The calls that do what they should and then answer S_FALSE, which is a success of its own kind.
    uint32_t falseRead = 0;
    uint32_t falseSeek = 0;
    uint32_t falseStat = 0;
};
