#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Replaces samples of 8 or 16 bits by their display bytes.
class DisplayMap
{
public:
    /// The display bytes of `firstSample` and those that follow it. What lies below has the first byte, what
    /// lies above has the last one.
    DisplayMap(uint32_t firstSample, std::vector<uint8_t> displayBytes);

    /// The display bytes of samples whose display range is (low, high), with high - low at most 65535.
    [[nodiscard]] static DisplayMap OfRange(uint32_t low, uint32_t high);

    [[nodiscard]] uint8_t ByteOf(uint32_t sample) const noexcept
    {
        return bytes[std::clamp<size_t>(sample, first, first + bytes.size() - 1) - first];
    }

    /// Writes the display bytes of `count` stored words. A sample is the distance of a word from the lowest
    /// one; in the words, the bits of `turned` are turned first. The words may be where the bytes go.
    template <typename Word>
    void Replace(const uint8_t* stored, size_t count, uint8_t* target, Word turned = 0,
                 Word lowest = 0) const;

private:
    /// The display byte of every 16-bit word.
    [[nodiscard]] std::vector<uint8_t> WordTable(uint16_t turned, uint16_t lowest) const;

    uint32_t first;
    std::vector<uint8_t> bytes;
    /// The bytes are the products of this factor and the distances from the first sample, truncated and
    /// limited to 255; 0 where no factor gives them all.
    float factor;
};

} // namespace Tav::Imaging::RawImage
