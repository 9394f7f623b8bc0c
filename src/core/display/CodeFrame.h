#pragma once

#include "core/samples/Image.h"
#include "core/samples/RescaleToUInt32.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tav::Imaging::RawImage {

/// A frame of 16-bit codes: 16-bit samples as they are stored, or floating-point samples quantised to 16
/// bits. There are only 65536 codes, so the arithmetic is done once per code. The frame itself is read twice:
/// to count the codes, and to replace each code by its display byte.
class CodeFrame
{
public:
    /// The rank of a code: the code of a larger sample has a higher rank.
    using Rank = uint16_t (*)(uint16_t code);

    /// Uses `frameBytes` as width x height 16-bit samples. They must outlive this object.
    CodeFrame(const std::vector<uint8_t>& frameBytes, uint32_t frameWidth, uint32_t frameHeight,
              Rank rankOfCode);

    /// Quantises the samples to at most 65535 and writes the codes over `frameBytes` from its beginning on.
    /// The source may read its samples from the same bytes: a sample has two bytes or more, so it is read
    /// before a code overwrites it.
    CodeFrame(const Image<double>& source, const RescaleToUInt32& rescale, std::vector<uint8_t>& frameBytes);

    /// Maps the calculated display range to 0..255: one byte per code, the last row first with `flip`.
    void ScaleToDisplayBytes(std::vector<uint8_t>& bytes, bool flip) const;

private:
    [[nodiscard]] std::vector<uint8_t> DisplayTable() const;

    const std::vector<uint8_t>& codes;
    size_t width;
    size_t height;
    Rank rank;
    /// The lowest and the highest rank of the range in which the display range is searched.
    uint32_t lowest = 0;
    uint32_t highest = 0;
    /// How often each code occurs.
    std::vector<uint32_t> counts;
};

} // namespace Tav::Imaging::RawImage
