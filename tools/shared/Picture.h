#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Lumora {

/// The size of a picture, or of the room for one, in pixels.
struct Box
{
    uint32_t width = 0;
    uint32_t height = 0;

    bool operator==(const Box&) const = default;
};

/// A picture of gray or coloured pixels, whose rows can be copied one after the other.
class Picture
{
public:
    /// In pixels, and bytes for each pixel: 1 for gray, or 3 for blue, green and red.
    Picture(uint32_t pictureWidth, uint32_t pictureHeight, uint32_t pictureChannels) noexcept
        : width(pictureWidth), height(pictureHeight), channels(pictureChannels)
    {}
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    virtual ~Picture() = default;

    [[nodiscard]] size_t RowBytes() const noexcept { return size_t{width} * channels; }

    /// Copies a row, counted from the top, to a place that has room for it.
    virtual void CopyRow(uint32_t row, uint8_t* target) const = 0;

    const uint32_t width;
    const uint32_t height;
    const uint32_t channels;
};

/// A picture in memory: rows from the top, without gaps.
class MemoryPicture final : public Picture
{
public:
    /// A black picture.
    MemoryPicture(uint32_t pictureWidth, uint32_t pictureHeight, uint32_t pictureChannels)
        : Picture(pictureWidth, pictureHeight, pictureChannels), pixels(RowBytes() * pictureHeight)
    {}

    void CopyRow(uint32_t row, uint8_t* target) const override;

    [[nodiscard]] std::span<uint8_t> Row(uint32_t row) noexcept
    {
        return std::span(pixels).subspan(row * RowBytes(), RowBytes());
    }

private:
    std::vector<uint8_t> pixels;
};

} // namespace Lumora
