#pragma once

#include "support/BytesAndLines.h"

#include "core/PixelType.h"

/// A frame of 2 x 2 samples as a little-endian file stores them, and its picture.
struct FourSamples
{
    Bytes stored;
    Bytes picture;
};

/// Four samples of a type that is shown; nothing for any other.
[[nodiscard]] FourSamples FourSamplesOf(Tav::Imaging::RawImage::PixelType type);
