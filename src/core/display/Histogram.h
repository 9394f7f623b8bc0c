#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Tav::Imaging::RawImage {

/// How often each code of 16 bits occurs. Neighbouring codes are often equal, and a processor that counts the
/// same code twice waits for the first count to be stored. So neighbours are counted in different tables.
class Histogram
{
public:
    /// Counts codes from 0 to `codes` - 1, of a frame with `samples` samples.
    Histogram(size_t codes, size_t samples);

    /// Counts `count` stored words, each as its distance from the lowest one, which must be a code. In the
    /// words, the bits of `turned` are turned first.
    void Add(const uint8_t* stored, size_t count, uint16_t turned = 0, uint16_t lowest = 0);

    /// The counts of all codes.
    [[nodiscard]] std::span<const uint32_t> Sum();

private:
    size_t codeCount;
    size_t tableCount;
    std::vector<uint32_t> counts;
};

/// How often each byte occurs.
[[nodiscard]] std::array<uint32_t, 256> CountBytes(const uint8_t* bytes, size_t count);

} // namespace Tav::Imaging::RawImage
