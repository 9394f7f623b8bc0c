#pragma once

#include "core/RawImageBase.h"

namespace Tav::Imaging::RawImage {

/// Builds the image's display picture from the bytes of its frame, packed and in the stream's byte order. The
/// frame must hold the bytes that the image's size and pixel type require. It becomes the picture.
void ConvertFrame(RawImageBase& image, FrameBytes frame);

} // namespace Tav::Imaging::RawImage
