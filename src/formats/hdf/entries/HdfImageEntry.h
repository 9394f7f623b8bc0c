#pragma once

#include "core/PixelType.h"

#include <cstdint>
#include <string>

namespace Tav::Imaging::RawImage {

/// How the samples of a colour picture are stored, or the frames of a series.
enum class HdfInterlace : uint32_t
{
    Undefined = 0,
    /// Colours pixel by pixel, or a single plane.
    Pixel = 1,
    /// Plane by plane, or a series of frames.
    Plane = 3,
};

/// One frame that can be shown.
struct HdfImageEntry
{
    /// Frame size in pixels.
    uint32_t width = 0;
    uint32_t height = 0;
    /// Number of frames in the dataset, and the index of this one.
    uint32_t seriesFrames = 1;
    uint32_t frameInSeries = 0;
    PixelType pixelType = PixelType::Unknown;
    /// Full path of the dataset, as spelled in the file.
    std::string path;
    HdfInterlace interlace = HdfInterlace::Undefined;
};

} // namespace Tav::Imaging::RawImage
