#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Tav::Imaging::RawImage {

/// How many of a stream's first bytes tell its format.
constexpr size_t identificationBytes = 64;

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

} // namespace Tav::Imaging::RawImage
