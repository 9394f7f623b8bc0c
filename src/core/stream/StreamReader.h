#pragma once

#include "core/stream/ByteOrder.h"
#include "platform/ComPtr.h"
#include "platform/Platform.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Tav::Imaging::RawImage {

/// A cursor over a COM stream that keeps a window of at most 4 MiB in memory, so that a header of many
/// small fields costs one read of the stream. It moves the stream's own position. The memory of a window of
/// the full size is kept for the next reader.
class StreamReader
{
public:
    static constexpr uint64_t maximumWindowBytes = 0x400000;

    /// Takes a reference to the stream and loads its first window.
    /// Throws std::invalid_argument for a null stream, std::runtime_error when the size or the first
    /// window cannot be read.
    explicit StreamReader(IStream* stream);
    StreamReader(const StreamReader&) = delete;
    StreamReader& operator=(const StreamReader&) = delete;
    virtual ~StreamReader();

    /// Loads the window that begins at an absolute offset and puts the cursor there. An offset at the end of
    /// the stream gives an empty window. For an offset beyond the end, it returns false and changes nothing.
    /// After any other failure, the window's bytes are undefined.
    [[nodiscard]] bool LoadWindow(uint64_t offset);

    /// Puts the cursor at an absolute offset, and loads a window only if the offset is outside the present
    /// one.
    [[nodiscard]] bool GoTo(uint64_t offset);

    /// Moves the cursor forward without reading. If the stream ends before, returns false and does not move
    /// it.
    [[nodiscard]] bool Skip(uint64_t count) noexcept;

    /// Absolute stream offset of the cursor.
    [[nodiscard]] uint64_t Position() const noexcept { return windowStart + cursor; }

    /// The next `count` bytes, valid until the next read; nothing when the stream does not hold them.
    [[nodiscard]] std::optional<std::span<const uint8_t>> ReadBytes(size_t count);

    /// The next unsigned number; nothing when the stream does not hold it.
    template <std::unsigned_integral Number>
    [[nodiscard]] std::optional<Number> ReadNumber(ByteOrder order)
    {
        const auto bytes = ReadBytes(sizeof(Number));
        if (!bytes)
            return std::nullopt;
        return AssembleNumber<Number>(bytes->data(), order);
    }

    ComPtr<IStream> stream;
    std::vector<uint8_t> window;
    uint64_t streamSize = 0;
    uint64_t windowLength = 0;
    uint64_t windowStart = 0;
    uint64_t cursor = 0;
};

/// Gets the size of the stream in bytes. If the stream is null or does not report it, returns false and
/// leaves `size` unchanged.
[[nodiscard]] bool GetStreamSize(IStream* stream, uint64_t* size);

/// Reads exactly `count` bytes at an absolute offset; false when the stream does not hold or deliver them.
[[nodiscard]] bool ReadStreamAt(IStream* stream, uint64_t offset, void* buffer, uint32_t count);

/// The text in lowercase: each byte as the C library converts it in the current locale.
[[nodiscard]] std::string ToLower(const std::string& text);

} // namespace Tav::Imaging::RawImage
