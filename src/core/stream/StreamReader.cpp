#include "core/stream/StreamReader.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <stdexcept>

namespace Tav::Imaging::RawImage {

namespace {

/// Seeks and reads exactly `count` bytes. If the stream reports another count, even a larger one, the read
/// has failed.
bool ReadExactly(IStream* stream, uint64_t offset, void* buffer, uint32_t count)
{
    LARGE_INTEGER position;
    position.QuadPart = static_cast<int64_t>(offset);
    if (FAILED(stream->Seek(position, STREAM_SEEK_SET, nullptr)))
        return false;

    // Some streams reject a null buffer even for a 0-byte read.
    uint8_t unused = 0;
    ULONG countRead = 0;
    return SUCCEEDED(stream->Read(buffer ? buffer : &unused, count, &countRead)) && countRead == count;
}

// Memory that is new to the process takes longer than reading a window. So one window of the full size is
// kept for the next reader.
std::vector<uint8_t> spareWindow;
std::atomic_flag isSpareInUse;

/// Exchanges a window and the spare one. Does nothing while another thread does the same.
void SwapWithSpare(std::vector<uint8_t>& window) noexcept
{
    if (isSpareInUse.test_and_set(std::memory_order_acquire))
        return;
    window.swap(spareWindow);
    isSpareInUse.clear(std::memory_order_release);
}

} // namespace

StreamReader::StreamReader(IStream* source) : stream(ComPtr<IStream>::Share(source))
{
    if (!stream)
        throw std::invalid_argument("NULL Pointer");
    if (!GetStreamSize(source, &streamSize))
        throw std::runtime_error("Could not get file size");
    if (streamSize >= maximumWindowBytes)
        SwapWithSpare(window);
    if (!LoadWindow(0))
        throw std::runtime_error("Could not read file");
}

StreamReader::~StreamReader()
{
    if (window.capacity() >= maximumWindowBytes)
        SwapWithSpare(window);
}

bool StreamReader::LoadWindow(uint64_t offset)
{
    if (offset > streamSize)
        return false;

    windowLength = std::min(maximumWindowBytes, streamSize - offset);
    windowStart = offset;
    cursor = 0;
    window.resize(windowLength);
    return ReadExactly(stream.Get(), offset, window.data(), static_cast<uint32_t>(windowLength));
}

bool StreamReader::GoTo(uint64_t offset)
{
    if (offset < windowStart || offset - windowStart >= windowLength)
        return LoadWindow(offset);
    cursor = offset - windowStart;
    return true;
}

bool StreamReader::Skip(uint64_t count) noexcept
{
    const uint64_t position = Position();
    if (position > streamSize || streamSize - position < count)
        return false;
    cursor += count;
    return true;
}

std::optional<std::span<const uint8_t>> StreamReader::ReadBytes(size_t count)
{
    const uint64_t position = Position();
    if (position > streamSize || streamSize - position < count || count > maximumWindowBytes)
        return std::nullopt;
    if (cursor > windowLength || windowLength - cursor < count)
    {
        if (!LoadWindow(position))
            return std::nullopt;
    }

    const std::span<const uint8_t> bytes{window.data() + cursor, count};
    cursor += count;
    return bytes;
}

bool GetStreamSize(IStream* stream, uint64_t* size)
{
    STATSTG statistics = {};
    if (!stream || FAILED(stream->Stat(&statistics, STATFLAG_NONAME)))
        return false;
    *size = statistics.cbSize.QuadPart;
    return true;
}

bool ReadStreamAt(IStream* stream, uint64_t offset, void* buffer, uint32_t count)
{
    uint64_t size = 0;
    if (!GetStreamSize(stream, &size) || size < offset || size - offset < count)
        return false;
    return ReadExactly(stream, offset, buffer, count);
}

std::string ToLower(const std::string& text)
{
    std::string lowered = text;
    std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return lowered;
}

} // namespace Tav::Imaging::RawImage
