#pragma once

#include "core/PixelType.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Little-endian samples that are spread over the range of their type, or over some millions where the type
/// has fractions, with no two neighbours alike. The same count gives the same samples.
[[nodiscard]] std::vector<uint8_t> VariedSamples(Tav::Imaging::RawImage::PixelType type, size_t count);
