#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace Tav::Imaging::RawImage {

// Decoders of one stored sample. The loops over a whole frame live on them being a single load.
static_assert(std::endian::native == std::endian::little);

template <typename Word>
[[nodiscard]] inline Word LoadLittleEndian(const uint8_t* bytes) noexcept
{
    Word word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

/// The value of a half-precision code. Infinities and NaN of either sign count as the brightest value,
/// +infinity; subnormal numbers scale by 2^-15.
[[nodiscard]] float DecodeHalf(uint16_t code) noexcept;

} // namespace Tav::Imaging::RawImage
