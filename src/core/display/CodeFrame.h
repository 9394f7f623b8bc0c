#pragma once

#include "core/samples/Image.h"
#include "core/samples/RescaleToUInt32.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tav::Imaging::RawImage {

/// A frame of 16-bit codes: 16-bit samples as they are stored, or floating-point samples quantised to
/// 16 bits. There are only 65536 codes, so the arithmetic is done once per code, and the frame itself is
/// gone through twice: to count the codes and to replace each by its display byte.
class CodeFrame
{
public:
    /// A code's rank: codes sorted by rank are sorted by the samples that they stand for.
    using Rank = uint16_t (*)(uint16_t code);

    /// Takes `frameBytes` for width x height 16-bit samples, which must outlive the frame of codes.
    CodeFrame(const std::vector<uint8_t>& frameBytes, uint32_t frameWidth, uint32_t frameHeight,
              Rank rankOfCode);

    /// Quantises the samples to at most 65535 and writes the codes over `frameBytes` from its beginning on.
    /// The source may read its samples there: they have two bytes or more, and are read before a code
    /// reaches them.
    CodeFrame(const Image<double>& source, const RescaleToUInt32& rescale, std::vector<uint8_t>& frameBytes);

    /// Maps the calculated display range to 0..255: one byte per code, the last row first with `flip`.
    void ScaleToDisplayBytes(std::vector<uint8_t>& bytes, bool flip) const;

private:
    [[nodiscard]] std::vector<uint8_t> DisplayTable() const;

    const std::vector<uint8_t>& codes;
    size_t width;
    size_t height;
    Rank rank;
    /// Ranks of the ends of the range in which the display range is looked for.
    uint32_t lowest = 0;
    uint32_t highest = 0;
    /// How often each code occurs.
    std::vector<uint32_t> counts;
};

} // namespace Tav::Imaging::RawImage
