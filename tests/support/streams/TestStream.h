#pragma once

#include "support/BytesAndLines.h"

#include "platform/Platform.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <optional>

/// How a stream misbehaves; nothing by default. Calls are counted from 1, and 0 means never.
struct StreamFaults
{
    /// The size that Stat reports instead of the true one.
    std::optional<uint64_t> reportedSize = std::nullopt;
    uint32_t failStatAt = 0;
    uint32_t failSeekAt = 0;
    uint32_t failReadAt = 0;
    /// No read delivers more than this many bytes.
    uint32_t longestRead = UINT32_MAX;
    /// Added to the count that a read reports.
    int32_t extraCountReported = 0;
    /// What Stat, Seek and Read answer when they succeed.
    HRESULT success = S_OK;
};

/// One of the calls that can be told to fail.
using FailingStreamCall = uint32_t StreamFaults::*;

#ifdef _WIN32
/// The rest of the Windows interface, which nobody here calls, and the destructor that it lacks.
class ReadOnlyStream : public IStream
{
public:
    virtual ~ReadOnlyStream() = default;
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }
};
#else
class ReadOnlyStream : public IStream
{
public:
    virtual ~ReadOnlyStream() = default;
};
#endif

/// A stream over bytes in memory that counts what is asked of it and can be told to misbehave. It belongs
/// to the test, on the stack; references are counted so that a test can see that all have been released.
class TestStream : public ReadOnlyStream
{
public:
    explicit TestStream(Bytes content, StreamFaults streamFaults = {})
        : bytes(std::move(content)), faults(streamFaults)
    {}
    TestStream(const TestStream&) = delete;
    TestStream& operator=(const TestStream&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override
    {
        if (!object)
            return E_POINTER;
        *object = riid == IID_IUnknown || riid == IID_IStream ? this : nullptr;
        if (!*object)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* countRead) override
    {
        if (++readCalls == faults.failReadAt)
            return STG_E_READFAULT;
        const uint64_t left = position < bytes.size() ? bytes.size() - position : 0;
        const auto delivered = static_cast<ULONG>(std::min<uint64_t>({left, count, faults.longestRead}));
        if (delivered > 0)
            std::memcpy(buffer, bytes.data() + position, delivered);
        position += delivered;
        bytesRead += delivered;
        if (countRead)
            *countRead = delivered + static_cast<ULONG>(faults.extraCountReported);
        return faults.success;
    }

    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* newPosition) override
    {
        if (++seekCalls == faults.failSeekAt)
            return STG_E_INVALIDFUNCTION;
        const uint64_t base = origin == STREAM_SEEK_SET   ? 0
                              : origin == STREAM_SEEK_CUR ? position
                                                          : bytes.size();
        position = base + static_cast<uint64_t>(move.QuadPart);
        if (newPosition)
            newPosition->QuadPart = position;
        return faults.success;
    }

    HRESULT STDMETHODCALLTYPE Stat(STATSTG* statistics, DWORD flags) override
    {
        statFlags = flags;
        if (++statCalls == faults.failStatAt)
            return STG_E_INVALIDFUNCTION;
        *statistics = {};
        statistics->type = STGTY_STREAM;
        statistics->cbSize.QuadPart = faults.reportedSize.value_or(bytes.size());
        return faults.success;
    }

    Bytes bytes;
    StreamFaults faults;
    /// What has been asked for so far.
    uint32_t statCalls = 0;
    uint32_t seekCalls = 0;
    uint32_t readCalls = 0;
    uint64_t bytesRead = 0;
    DWORD statFlags = 0;
    uint64_t position = 0;
    /// References held by others than the test.
    std::atomic<uint32_t> references{0};
};
