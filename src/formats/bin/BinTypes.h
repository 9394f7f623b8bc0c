#pragma once

#include "core/PixelTypeCode.h"

namespace Tav::Imaging::RawImage {

/// The type codes of BIN files. One that is added here is read, identified and offered to WIC.
constexpr PixelTypeCode binTypes[] = {
    {1, PixelType::UInt8}, {2, PixelType::UInt16}, {3, PixelType::UInt32},  {4, PixelType::Int8},
    {5, PixelType::Int16}, {6, PixelType::Int32},  {7, PixelType::Float32}, {8, PixelType::Double64},
};

} // namespace Tav::Imaging::RawImage
