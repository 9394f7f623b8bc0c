#pragma once

#include "core/PixelType.h"

#include <cstdint>

namespace Tav::Imaging::RawImage {

/// The longest text of an attribute and the longest name that are looked at, in bytes without the zero byte.
constexpr uint32_t longestHdfText = 1023;

/// How deep groups are followed. No file of sense is deeper, and the paths of all datasets of a deeper one
/// would take the square of the file's size.
constexpr uint32_t deepestHdfGroup = 256;
constexpr uint32_t longestHdfPath = deepestHdfGroup * (longestHdfText + 1);

/// What the sandbox tells of a dataset that may be an image. It is copied out of the sandbox byte for byte,
/// so it has the same layout on every machine.
struct HdfCandidate
{
    /// The lengths of the first three dimensions, the slowest first.
    uint64_t sides[3];

    PixelType pixelType;
    int32_t dimensions;
    /// Negative when it cannot be told.
    int32_t palettes;
    /// The attribute INTERLACE_MODE up to its zero byte; empty without it.
    char interlace[longestHdfText + 1];
};

static_assert(sizeof(HdfCandidate) == 1064);

} // namespace Tav::Imaging::RawImage
