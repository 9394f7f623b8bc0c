#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Tav::Imaging::RawImage {

/// The bytes of a stored frame, and then of its picture, which takes their place. Memory from the system
/// costs more time than the arithmetic on a frame. So it is not written with zeros first, as that of a vector
/// is: large blocks come as zeros. And most pictures need no second block.
class FrameBytes
{
public:
    // The names are those of the standard containers.
    // NOLINTBEGIN(readability-identifier-naming)
    using value_type = uint8_t;
    using const_iterator = const uint8_t*;

    FrameBytes() = default;

    /// Bytes that are zero. Throws std::bad_alloc.
    explicit FrameBytes(size_t byteCount);
    explicit FrameBytes(std::span<const uint8_t> bytes);

    FrameBytes(const FrameBytes&) = delete;
    FrameBytes& operator=(const FrameBytes&) = delete;
    FrameBytes(FrameBytes&& other) noexcept;
    FrameBytes& operator=(FrameBytes&& other) noexcept;
    ~FrameBytes();

    [[nodiscard]] uint8_t* data() noexcept { return first; }
    [[nodiscard]] const uint8_t* data() const noexcept { return first; }
    [[nodiscard]] size_t size() const noexcept { return count; }
    [[nodiscard]] bool empty() const noexcept { return count == 0; }
    [[nodiscard]] const uint8_t* begin() const noexcept { return first; }
    [[nodiscard]] const uint8_t* end() const noexcept { return first + count; }
    uint8_t& operator[](size_t index) noexcept { return first[index]; }
    const uint8_t& operator[](size_t index) const noexcept { return first[index]; }
    // NOLINTEND(readability-identifier-naming)

    /// Keeps the first bytes and returns the memory of the others, if there is much of it.
    void Truncate(size_t byteCount) noexcept;

    friend bool operator==(const FrameBytes& bytes, const std::vector<uint8_t>& others)
    {
        return std::ranges::equal(bytes, others);
    }
    friend bool operator==(const FrameBytes& bytes, const FrameBytes& others)
    {
        return std::ranges::equal(bytes, others);
    }

private:
    uint8_t* first = nullptr;
    size_t count = 0;
    /// How many bytes of pages there are; 0 for a block of the heap.
    size_t pageBytes = 0;
};

} // namespace Tav::Imaging::RawImage
