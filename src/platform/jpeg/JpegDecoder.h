#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// A decoded picture: three bytes to the pixel (red, green, blue), rows top-down without padding.
struct JpegPicture
{
    uint32_t width = 0;
    uint32_t height = 0;
    /// How many pictures the file holds; the first one is decoded.
    uint32_t frameCount = 0;
    std::vector<uint8_t> pixels;
};

/// Decodes a JPEG file, with the codecs of Windows or, elsewhere, with libjpeg-turbo. Returns nothing if the
/// file cannot be decoded, or a side of the picture is longer than `longestSide` pixels.
[[nodiscard]] std::optional<JpegPicture> DecodeJpeg(std::span<const uint8_t> file, uint32_t longestSide);
