#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace Tav::Imaging::RawImage {

/// One frame's samples, widened to one of three types on the way to the display picture: `width` x `height`
/// values, row by row, first stored row first. They are widened in blocks each time they are needed:
/// that costs less than the memory of a widened copy of the frame.
template <typename T>
class Image
{
public:
    Image(uint32_t imageWidth, uint32_t imageHeight) noexcept : width(imageWidth), height(imageHeight) {}
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    virtual ~Image() = default;

    /// Fills the block with every `step`-th sample from number `first` on; the image holds that many.
    virtual void Load(size_t first, size_t step, std::span<T> block) const = 0;

    [[nodiscard]] size_t SampleCount() const noexcept { return size_t{width} * height; }

    /// Ends of the range: first the smallest and largest sample, later the display range.
    T minimum = 0;
    T maximum = 0;
    uint32_t width;
    uint32_t height;
};

/// How many samples are widened at a time: few enough for the processor's nearest cache.
constexpr size_t blockSamples = 2048;

/// Calls `use(index, block)` for `count` of the image's samples, every `step`-th from number `first` on,
/// block by block. The index counts the samples before the block.
template <typename T, typename Use>
void ForEachBlock(const Image<T>& image, size_t first, size_t step, size_t count, const Use& use)
{
    std::array<T, blockSamples> memory;
    for (size_t index = 0; index < count; index += blockSamples)
    {
        const std::span<T> block{memory.data(), std::min(blockSamples, count - index)};
        image.Load(first + index * step, step, block);
        use(index, block);
    }
}

/// The same for all samples of the image.
template <typename T, typename Use>
void ForEachBlock(const Image<T>& image, const Use& use)
{
    ForEachBlock(image, 0, 1, image.SampleCount(), use);
}

} // namespace Tav::Imaging::RawImage
