#pragma once

#include <bit>
#include <cstddef>
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

/// Has bytes brought into the near caches that are read soon, while the processor does other work. Loops that
/// stop after each block to use it leave the memory idle otherwise.
inline void Prefetch(const uint8_t* bytes, size_t count) noexcept
{
    constexpr size_t cacheLine = 64;
    for (size_t offset = 0; offset < count; offset += cacheLine)
        __builtin_prefetch(bytes + offset);
}

/// The value of a half-precision code. Infinities and NaN of either sign count as the brightest value,
/// +infinity; subnormal numbers scale by 2^-15.
[[nodiscard]] float DecodeHalf(uint16_t code) noexcept;

} // namespace Tav::Imaging::RawImage
