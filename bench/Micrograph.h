#pragma once

#include "core/PixelType.h"

#include <cstdint>
#include <vector>

/// The samples of a frame of edge x edge pixels, like a micrograph's: a slope, a few bright spots, and noise.
[[nodiscard]] std::vector<uint8_t> MicrographFrame(Tav::Imaging::RawImage::PixelType type, uint32_t edge);
