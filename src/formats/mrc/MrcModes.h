#pragma once

#include "core/PixelTypeCode.h"
#include "core/display/FrameConversion.h"

#include <algorithm>

namespace Tav::Imaging::RawImage {

/// The modes of MRC files that are read. A mode that is added here is read, identified and offered to WIC.
constexpr PixelTypeCode mrcModes[] = {
    {0, PixelType::Int8},     {1, PixelType::Int16},  {2, PixelType::Float32}, {6, PixelType::UInt16},
    {12, PixelType::Float16}, {16, PixelType::RGB24}, {101, PixelType::UInt4},
};

// MRC files exist in either byte order, and a big-endian one must not be shown as if it were the other.
static_assert(std::ranges::none_of(mrcModes, IsAlwaysLittleEndian, &PixelTypeCode::pixelType));

} // namespace Tav::Imaging::RawImage
