#pragma once

#include "support/BytesAndLines.h"

#include "core/PixelType.h"

#include <cstddef>

/// Little-endian samples that are spread over the range of their type, or over some millions where the type
/// has fractions, with no two neighbours alike. The same count gives the same samples.
[[nodiscard]] Bytes VariedSamples(Tav::Imaging::RawImage::PixelType type, size_t count);
