#pragma once

#include "core/RawImageBase.h"

#include <cstdint>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Builds the image's display picture from the bytes of its frame, packed and in the stream's byte order.
/// The frame must hold as many bytes as the image's size and pixel type ask for, and is used up.
void ConvertFrame(RawImageBase& image, std::vector<uint8_t>& frame);

} // namespace Tav::Imaging::RawImage
