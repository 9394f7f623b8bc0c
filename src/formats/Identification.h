#pragma once

#include "formats/HeaderPattern.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Tav::Imaging::RawImage {

/// What a stream's first bytes say it is.
enum class Identity
{
    Unknown,
    Lattice,
    Dm3,
    Dm4,
    Hdf,
    Emi,
    Mrc,
    Npy,
    Raw,
    Ser,
    Bin,
    EnhancedMetafile,
    Bitmap,
    Jpeg,
    TiffLittleEndian,
    TiffBigEndian,
};

/// Tells the format from the first bytes alone. Some headers fit two formats; the order of the tests
/// decides between them.
[[nodiscard]] Identity Identify(std::span<const uint8_t, identificationBytes> header) noexcept;

/// The patterns of the headers that have this identity. A pattern cannot say "not", so those of MRC files
/// also fit metafiles that look like one.
[[nodiscard]] std::vector<HeaderPattern> HeaderPatternsOf(Identity identity);

} // namespace Tav::Imaging::RawImage
