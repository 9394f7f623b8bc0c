#pragma once

#include <cstdint>
#include <vector>

namespace Tav::Imaging::RawImage {

/// One frame's samples, widened to one of three types on the way to the display picture:
/// `width` x `height` values, row by row, first stored row first, in host byte order.
template <typename T>
class Image
{
public:
    virtual ~Image() = default;

    /// Ends of the range: first the smallest and largest sample, later the display range.
    T minimum = 0;
    T maximum = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<T> samples;
};

/// Floating-point samples are quantised to 16 bits where their range allows it, unless 32 bits are forced.
template <>
class Image<double>
{
public:
    virtual ~Image() = default;

    double minimum = 0;
    double maximum = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    bool force32Bit = false;
    std::vector<double> samples;
};

} // namespace Tav::Imaging::RawImage
