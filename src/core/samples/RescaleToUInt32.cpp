#include "core/samples/RescaleToUInt32.h"

#include "core/samples/Vectorised.h"

#include <cmath>

namespace Tav::Imaging::RawImage {

namespace {

constexpr double full16Bit = 65535.0;
constexpr double full32Bit = 4294967295.0;
constexpr double twoTo32 = 4294967296.0;

/// Whole part of the value modulo 2^32, which is never negative; 0 for infinities and NaN.
uint32_t WholePartModulo32Bit(double value) noexcept
{
    if (!std::isfinite(value))
        return 0;
    const double remainder = std::fmod(std::trunc(value), twoTo32);
    return static_cast<uint32_t>(remainder < 0 ? remainder + twoTo32 : remainder);
}

/// A number from 0 to 2^32 - 1 without its fraction. Processors convert signed numbers only, so the upper
/// half is moved down and back.
uint32_t WholeNumber(double value) noexcept
{
    constexpr double half = 2147483648.0;
    const bool isUpper = value >= half;
    const auto whole = static_cast<uint32_t>(static_cast<int32_t>(value - (isUpper ? half : 0)));
    return whole ^ (isUpper ? 0x80000000 : 0);
}

} // namespace

RescaleToUInt32::RescaleToUInt32(const Image<double>& source, bool force32Bit) : minimum(source.minimum)
{
    const double range = source.maximum - source.minimum;
    full = force32Bit || WholePartModulo32Bit(range) > 65535 ? full32Bit : full16Bit;
    scale = full / range;
    // If the range is zero or infinite, the upper limit becomes 0.
    const double end = scale * range;
    highest = end > 0 && std::isfinite(end) ? static_cast<uint32_t>(end) : 0;
}

bool RescaleToUInt32::FitsIn16Bit() const noexcept
{
    return full == full16Bit;
}

RescaledImage::RescaledImage(const Image<double>& floatingSource, const RescaleToUInt32& sourceRescale)
    : Image(floatingSource.width, floatingSource.height), source(floatingSource), rescale(sourceRescale)
{
    maximum = rescale.Highest();
}

void RescaledImage::Load(size_t first, size_t step, std::span<unsigned int> block) const
{
    ForEachBlock(source, first, step, block.size(), [&](size_t index, std::span<const double> samples) {
        Vectorised(
            [rescaled = rescale, from = samples.data(), to = block.data() + index, count = samples.size()] {
                for (size_t i = 0; i < count; ++i)
                    to[i] = WholeNumber(rescaled(from[i]));
            });
    });
}

} // namespace Tav::Imaging::RawImage
