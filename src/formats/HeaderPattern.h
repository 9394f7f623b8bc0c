#pragma once

#include "core/ReaderFactory.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

namespace Tav::Imaging::RawImage {

/// Required bits of a stream's first bytes. WIC compares them before it asks a decoder: a byte matches if it
/// has the required bits where the mask is set. A pattern covers all bytes that identification needs, so WIC
/// never offers a shorter stream.
struct HeaderPattern
{
    static constexpr size_t size = identificationBytes;

    std::array<uint8_t, size> bytes = {};
    std::array<uint8_t, size> mask = {};

    /// This pattern, which then also requires these bits of one byte.
    [[nodiscard]] constexpr HeaderPattern WithByte(size_t offset, uint8_t value, uint8_t bits = 0xFF) const
    {
        HeaderPattern pattern = *this;
        pattern.bytes[offset] = value & bits;
        pattern.mask[offset] = bits;
        return pattern;
    }

    /// This pattern, which then also requires a text, compared byte by byte.
    [[nodiscard]] constexpr HeaderPattern WithText(size_t offset, std::string_view text) const
    {
        HeaderPattern pattern = *this;
        for (const char character : text)
            pattern = pattern.WithByte(offset++, static_cast<uint8_t>(character));
        return pattern;
    }

    /// This pattern, which then also requires these bytes to be zero.
    [[nodiscard]] constexpr HeaderPattern WithZeros(std::initializer_list<size_t> offsets) const
    {
        HeaderPattern pattern = *this;
        for (const size_t offset : offsets)
            pattern = pattern.WithByte(offset, 0);
        return pattern;
    }

    [[nodiscard]] constexpr bool Matches(std::span<const uint8_t, size> header) const noexcept
    {
        for (size_t i = 0; i < size; ++i)
        {
            if ((header[i] & mask[i]) != bytes[i])
                return false;
        }
        return true;
    }
};

} // namespace Tav::Imaging::RawImage
