#include "core/samples/SampleDecoding.h"

#include <cmath>
#include <limits>

namespace Tav::Imaging::RawImage {

float DecodeHalf(uint16_t code) noexcept
{
    const int exponent = (code >> 10) & 31;
    if (exponent == 31)
        return std::numeric_limits<float>::infinity();
    const float fraction = static_cast<float>(code & 1023) * 0.0009765625f;
    const float magnitude = std::ldexp(exponent != 0 ? fraction + 1.0f : fraction, exponent - 15);
    return (code & 0x8000) != 0 ? -magnitude : magnitude;
}

} // namespace Tav::Imaging::RawImage
