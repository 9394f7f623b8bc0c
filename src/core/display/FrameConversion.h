#pragma once

#include "core/RawImageBase.h"

#include <cstdint>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Builds the image's display picture from the bytes of its frame, packed and in the stream's byte order. The
/// frame must hold the bytes that the image's size and pixel type require. Its contents are lost.
void ConvertFrame(RawImageBase& image, std::vector<uint8_t>& frame);

} // namespace Tav::Imaging::RawImage
