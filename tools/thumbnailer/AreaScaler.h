#pragma once

#include "core/display/DisplayPicture.h"

#include <cstdint>

namespace Lumora {

/// The picture, scaled down so that its longer side has this many pixels; a smaller one stays as it is. Each
/// new pixel is the average of the area that it covers, rounded half up.
[[nodiscard]] Tav::Imaging::RawImage::DisplayPicture
ScaledDown(Tav::Imaging::RawImage::DisplayPicture picture, uint32_t longerSide);

} // namespace Lumora
