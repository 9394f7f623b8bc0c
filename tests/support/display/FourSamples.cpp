#include "support/display/FourSamples.h"

#include "support/display/FrameReader.h"

using namespace Tav::Imaging::RawImage;

// Whole numbers span exactly 255 steps, so that the picture is the distance from the smallest one. Fractions
// span 0 to 1: they are quantised to 65535 steps and then divided by 257.
FourSamples FourSamplesOf(PixelType type)
{
    switch (type)
    {
    case PixelType::UInt8:
        return {{0, 100, 200, 255}, {0, 100, 200, 255}};
    case PixelType::UInt16:
        return {Stored<uint16_t>({65000, 65255, 65001, 65128}), {0, 255, 1, 128}};
    case PixelType::UInt32:
        return {Stored<uint32_t>({0x80000000, 0x800000FF, 0x80000001, 0x80000080}), {0, 255, 1, 128}};
    case PixelType::Int8:
        // Signed, even where half of the samples are zero.
        return {{0x80, 0x00, 0x00, 0x7F}, {0, 128, 128, 255}};
    case PixelType::Int16:
        return {Stored<int16_t>({-100, -99, 55, 155}), {0, 1, 155, 255}};
    case PixelType::Int32:
        return {Stored<int32_t>({-100000, -99999, -99845, -99745}), {0, 1, 155, 255}};
    case PixelType::Float32:
        return {Stored<float>({0, 1, 0.5F, 0.25F}), {0, 255, 127, 63}};
    case PixelType::Double64:
        return {Stored<double>({0, 1, 0.5, 0.25}), {0, 255, 127, 63}};
    // Magnitudes of 0, 5, 2.5 and 1.25.
    case PixelType::Complex64:
        return {Stored<float>({0, 0, 3, -4, -1.5F, 2, 0.75F, 1}), {0, 255, 127, 63}};
    case PixelType::Complex128:
        return {Stored<double>({0, 0, 3, -4, -1.5, 2, 0.75, 1}), {0, 255, 127, 63}};
    case PixelType::RGBA32:
        return {{1, 2, 3, 255, 40, 50, 60, 0, 7, 8, 9, 10, 253, 254, 255, 1},
                {1, 2, 3, 40, 50, 60, 7, 8, 9, 253, 254, 255}};
    default:
        return {};
    }
}
