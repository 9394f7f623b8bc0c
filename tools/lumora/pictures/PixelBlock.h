#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Lumora {

/// A small picture in memory: rows from the top, three bytes to a pixel (blue, green, red), no gaps.
struct PixelBlock
{
    static constexpr size_t bytesPerPixel = 3;

    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> pixels;

    [[nodiscard]] size_t Stride() const noexcept { return size_t{width} * bytesPerPixel; }

    template <class Archive>
    void Transfer(Archive& archive)
    {
        archive.Field(width);
        archive.Field(height);
        archive.Field(pixels);
    }
};

} // namespace Lumora
