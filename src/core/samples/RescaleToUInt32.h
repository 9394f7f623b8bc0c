#pragma once

#include "core/samples/Image.h"

#include <cstdint>
#include <span>

namespace Tav::Imaging::RawImage {

/// Quantises the samples of one floating-point image to whole numbers from 0 to 65535, or to 2^32 - 1 when
/// the image's range is wider or 32 bits are forced.
class RescaleToUInt32
{
public:
    /// The image's range must be that of its samples.
    RescaleToUInt32(const Image<double>& source, bool force32Bit);

    /// Whether every quantised sample is at most 65535.
    [[nodiscard]] bool FitsIn16Bit() const noexcept;

    /// The quantised value of the image's maximum: the end of the display range, which begins at 0.
    [[nodiscard]] uint32_t Highest() const noexcept { return highest; }

    /// The sample's quantised value, of which the caller drops the fraction; NaN gives 0.
    [[nodiscard]] double operator()(double sample) const noexcept
    {
        const double scaled = (sample - minimum) * scale;
        const double limited = scaled > full ? full : scaled;
        return limited > 0 ? limited : 0;
    }

private:
    double minimum;
    /// The highest quantised value that there can be.
    double full;
    /// Quantised steps per unit of the source.
    double scale;
    uint32_t highest;
};

/// The quantised samples of a floating-point image, which must outlive it.
class RescaledImage final : public Image<unsigned int>
{
public:
    RescaledImage(const Image<double>& floatingSource, const RescaleToUInt32& sourceRescale);

    void Load(size_t first, size_t step, std::span<unsigned int> block) const override;

private:
    const Image<double>& source;
    RescaleToUInt32 rescale;
};

} // namespace Tav::Imaging::RawImage
