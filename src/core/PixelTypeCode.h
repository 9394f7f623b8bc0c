#pragma once

#include "core/PixelType.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>

namespace Tav::Imaging::RawImage {

/// A format's own number for the type of its samples.
struct PixelTypeCode
{
    uint32_t code;
    PixelType pixelType;
};

/// The pixel type that a table of codes gives; Unknown for a code that is not in it.
[[nodiscard]] constexpr PixelType PixelTypeOf(std::span<const PixelTypeCode> table, uint32_t code) noexcept
{
    const auto row = std::find_if(table.begin(), table.end(),
                                  [code](const PixelTypeCode& known) { return known.code == code; });
    return row == table.end() ? PixelType::Unknown : row->pixelType;
}

} // namespace Tav::Imaging::RawImage
