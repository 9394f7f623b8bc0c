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

    /// Fills the block with the samples from number `first` on; the image holds that many.
    virtual void Load(size_t first, std::span<T> block) const = 0;

    [[nodiscard]] size_t SampleCount() const noexcept { return size_t{width} * height; }

    /// Ends of the range: first the smallest and largest sample, later the display range.
    T minimum = 0;
    T maximum = 0;
    uint32_t width;
    uint32_t height;
};

/// How many samples are widened at a time: few enough for the processor's nearest cache.
constexpr size_t blockSamples = 2048;

/// Calls `use(first, block)` for the image's samples from `begin` to `end`, block by block.
template <typename T, typename Use>
void ForEachBlock(const Image<T>& image, size_t begin, size_t end, const Use& use)
{
    std::array<T, blockSamples> memory;
    for (size_t first = begin; first < end; first += blockSamples)
    {
        const std::span<T> block{memory.data(), std::min(blockSamples, end - first)};
        image.Load(first, block);
        use(first, block);
    }
}

/// Widens the image's range until it holds every sample; NaN changes nothing.
template <typename T>
void IncludeSamples(Image<T>& image)
{
    // Several independent extremes keep the loop from waiting for the last comparison.
    constexpr size_t lanes = 8;
    std::array<T, lanes> low;
    std::array<T, lanes> high;
    low.fill(image.minimum);
    high.fill(image.maximum);
    ForEachBlock(image, 0, image.SampleCount(), [&](size_t, std::span<const T> block) {
        const auto take = [&](size_t lane, T sample) {
            low[lane] = sample < low[lane] ? sample : low[lane];
            high[lane] = sample > high[lane] ? sample : high[lane];
        };
        const size_t whole = block.size() / lanes * lanes;
        for (size_t index = 0; index < whole; index += lanes)
        {
            for (size_t lane = 0; lane < lanes; ++lane)
                take(lane, block[index + lane]);
        }
        for (size_t index = whole; index < block.size(); ++index)
            take(0, block[index]);
    });
    image.minimum = *std::min_element(low.begin(), low.end());
    image.maximum = *std::max_element(high.begin(), high.end());
}

} // namespace Tav::Imaging::RawImage
