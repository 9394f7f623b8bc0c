#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>

namespace Tav::Imaging::RawImage {

/// Order of the bytes of a number in a file. The values are published as metadata.
enum class ByteOrder : uint32_t
{
    LittleEndian = 0,
    BigEndian = 1,
};

/// The number stored in the sizeof(Number) bytes at `bytes`, which need no alignment.
template <std::unsigned_integral Number>
[[nodiscard]] constexpr Number AssembleNumber(const uint8_t* bytes, ByteOrder order) noexcept
{
    Number number = 0;
    for (size_t i = 0; i < sizeof(Number); ++i)
    {
        const size_t place = order == ByteOrder::LittleEndian ? i : sizeof(Number) - 1 - i;
        number = static_cast<Number>(number | static_cast<Number>(Number{bytes[i]} << (8 * place)));
    }
    return number;
}

} // namespace Tav::Imaging::RawImage
