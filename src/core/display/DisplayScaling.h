#pragma once

#include "core/samples/FrameBytes.h"
#include "core/samples/Image.h"

#include <cstddef>
#include <cstdint>

namespace Tav::Imaging::RawImage {

/// The display byte of a level: without its fraction, and limited to 0..255.
[[nodiscard]] inline uint8_t LevelByte(double level) noexcept
{
    const double limited = level > 255.0 ? 255.0 : level;
    // 0 / 0 gives NaN. No comparison with NaN is true, so it becomes 0.
    return static_cast<uint8_t>(static_cast<int32_t>(limited > 0 ? limited : 0));
}

/// The display byte of a sample: its distance from the low end of the display range in steps of 1/255 of the
/// range, truncated and limited to 0..255. If the range is empty, the sample at its ends is black.
class DisplayScale
{
public:
    DisplayScale(uint32_t rangeLow, uint32_t rangeHigh) noexcept
        : low(rangeLow), step((rangeHigh - rangeLow) / 255.0)
    {}

    [[nodiscard]] uint8_t operator()(uint32_t sample) const noexcept
    {
        return LevelByte((sample - low) / step);
    }

    /// A factor whose product with the distance gives the byte of every sample, as the division by the step
    /// does; 0 where none was found, which is so for one range in twenty.
    [[nodiscard]] double Factor() const noexcept;

private:
    [[nodiscard]] bool IsFactor(double factor) const noexcept;

    double low;
    double step;
};

/// Signed samples as their distances from the smallest one. The source must outlive this image, and the
/// source's range must be that of its samples.
class DistanceImage final : public Image<unsigned int>
{
public:
    explicit DistanceImage(const Image<int>& signedSource) noexcept;

    void Load(size_t first, size_t step, std::span<unsigned int> block) const override;

private:
    const Image<int>& source;
};

/// Maps the image's display range to 0..255: one byte per sample, in the source's row order or, with `flip`,
/// with its last row first. The bytes may be those that the source's samples are made from: they are written
/// over them from their beginning on. Throws std::invalid_argument when the source holds no samples.
void ScaleToDisplayBytes(const Image<unsigned int>& source, FrameBytes& bytes, bool flip);

/// Sets the image's display range to the calculated one and maps it to 0..255, as above.
void ScaleByDynamicRange(Image<unsigned int>& image, FrameBytes& bytes, bool flip);

/// Stretches the contrast of a gray picture of `pixelCount` pixels in place; a picture with another number of
/// bytes, or without any, does not change.
void StretchContrast(FrameBytes& picture, size_t pixelCount);

} // namespace Tav::Imaging::RawImage
