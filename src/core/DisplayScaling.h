#pragma once

#include "core/Image.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Quantises floating-point samples to whole numbers from 0 to 65535, or to 2^32 - 1 when the range is
/// wider or 32 bits are forced; the target's display range is that of the quantised samples.
/// NaN samples become 0.
void RescaleToUInt32(const Image<double>& source, Image<unsigned int>& target);

/// Maps the image's display range to 0..255: one byte per sample, in the source's row order or, with
/// `flip`, with its last row first. Throws std::invalid_argument when the source holds no samples.
void ScaleToDisplayBytes(const Image<unsigned int>& source, std::vector<uint8_t>& bytes, bool flip);

/// Sets the image's display range to the calculated one and maps it to 0..255, as above.
void ScaleByDynamicRange(Image<unsigned int>& image, std::vector<uint8_t>& bytes, bool flip);

/// Stretches the contrast of a gray picture of `pixelCount` pixels in place; a picture of any other number
/// of bytes, or of none, stays as it is.
void StretchContrast(std::vector<uint8_t>& picture, size_t pixelCount);

} // namespace Tav::Imaging::RawImage
