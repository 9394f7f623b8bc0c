#pragma once

#include "formats/HeaderPattern.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Tav::Imaging::RawImage {

/// The format that a stream's first bytes show.
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

/// Identifies the format by the first bytes alone. Some headers fit two formats; the order of the tests
/// decides between them.
[[nodiscard]] Identity Identify(std::span<const uint8_t, identificationBytes> header) noexcept;

/// The patterns of the headers that have this identity. A pattern cannot exclude bytes, so the patterns of
/// MRC files also match metafiles that look like MRC files.
[[nodiscard]] std::vector<HeaderPattern> HeaderPatternsOf(Identity identity);

} // namespace Tav::Imaging::RawImage
