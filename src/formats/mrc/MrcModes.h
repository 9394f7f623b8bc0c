#pragma once

#include "core/PixelTypeCode.h"

namespace Tav::Imaging::RawImage {

/// The modes of MRC files that are read. A mode that is added here is read, identified and offered to WIC.
constexpr PixelTypeCode mrcModes[] = {
    {0, PixelType::Int8},     {1, PixelType::Int16},  {2, PixelType::Float32}, {6, PixelType::UInt16},
    {12, PixelType::Float16}, {16, PixelType::RGB24}, {101, PixelType::UInt4},
};

} // namespace Tav::Imaging::RawImage
