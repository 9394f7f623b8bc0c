#include "formats/Identification.h"

#include <algorithm>
#include <string_view>

namespace Tav::Imaging::RawImage {

namespace {

using namespace std::string_view_literals;

using Header = std::span<const uint8_t, identificationBytes>;

bool HasText(Header header, size_t offset, std::string_view text) noexcept
{
    return std::equal(text.begin(), text.end(), header.begin() + static_cast<std::ptrdiff_t>(offset),
                      [](char character, uint8_t byte) { return static_cast<uint8_t>(character) == byte; });
}

/// The modes of MRC files that are read: bits 0, 1, 2, 6, 12 and 16 of a mask, and 101.
constexpr bool IsMrcMode(uint8_t mode) noexcept
{
    constexpr uint32_t modesUpTo16 = 0x11047;
    return mode <= 16 ? ((modesUpTo16 >> mode) & 1) != 0 : mode == 101;
}

/// Columns below 2^24, rows below 2^16, sections below 2^24, and a known mode. The third byte is tested
/// by whoever asks.
bool IsLittleEndianMrc(Header b) noexcept
{
    return b[3] == 0 && b[6] == 0 && b[7] == 0 && b[11] == 0 && b[13] == 0 && b[14] == 0 && b[15] == 0 &&
           IsMrcMode(b[12]);
}

/// Columns and rows below 2^16, sections below 2^24, and a known mode.
bool IsBigEndianMrc(Header b) noexcept
{
    return b[0] == 0 && b[1] == 0 && b[4] == 0 && b[5] == 0 && b[8] == 0 && b[12] == 0 && b[13] == 0 &&
           b[14] == 0 && IsMrcMode(b[15]);
}

/// A metafile's record type and size can look like an MRC header; its signature cannot be mistaken.
Identity MrcOrMetafile(Header b) noexcept
{
    return HasText(b, 41, "EMF"sv) ? Identity::EnhancedMetafile : Identity::Mrc;
}

Identity IdentifyLattice(Header b) noexcept
{
    return HasText(b, 2, "PelixMesh "sv) || HasText(b, 2, "Vorna "sv) ? Identity::Lattice : Identity::Unknown;
}

Identity IdentifySerOrTiff(Header b) noexcept
{
    if (b[1] != 'I')
        return Identity::Unknown;
    if (b[2] == 0x97)
        return b[3] == 0x01 ? Identity::Ser : Identity::Unknown;
    return b[2] == '*' && b[3] == 0x00 ? Identity::TiffLittleEndian : Identity::Unknown;
}

/// The formats that begin with a magic word, and BIN, which has none: its type code and the high halves of
/// its two sizes have to do.
Identity IdentifyByMagic(Header b) noexcept
{
    switch (b[0])
    {
    case 0x93:
        return HasText(b, 1, "NUMPY"sv) ? Identity::Npy : Identity::Unknown;
    case 'T':
        return HasText(b, 0, "TAV RawImage\0"sv) ? Identity::Raw : Identity::Unknown;
    case 'I':
        return IdentifySerOrTiff(b);
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
    case 6:
    case 7:
    case 8:
        return b[1] == 0 && b[4] == 0 && b[5] == 0 && b[8] == 0 && b[9] == 0 ? Identity::Bin
                                                                             : Identity::Unknown;
    case 'B':
        return b[1] == 'M' ? Identity::Bitmap : Identity::Unknown;
    case 0xFF:
        return b[1] == 0xD8 ? Identity::Jpeg : Identity::Unknown;
    case 'M':
        return HasText(b, 1, "M\0*"sv) ? Identity::TiffBigEndian : Identity::Unknown;
    case 0x00:
        return IsBigEndianMrc(b) ? Identity::Mrc : Identity::Unknown;
    default:
        return Identity::Unknown;
    }
}

} // namespace

Identity Identify(Header b) noexcept
{
    if (b[0] == '#' && b[1] == ' ' && (b[2] == 'P' || b[2] == 'V'))
        return IdentifyLattice(b);
    if (b[0] == 0x00 && b[1] == 0x00 && b[2] == 0x00 && b[3] == 0x03)
        return Identity::Dm3;
    if (b[0] == 0x00 && b[1] == 0x00 && b[2] == 0x00 && b[3] == 0x04)
        return Identity::Dm4;
    if (b[0] == 0x89 && b[1] == 'H' && b[2] == 'D')
        return b[3] == 'F' ? Identity::Hdf : Identity::Unknown;
    if (b[0] == 'J' && b[1] == 'K' && b[3] == 0x02)
        return Identity::Emi;
    // The third byte is zero in every little-endian MRC file of less than 65,536 columns.
    if (b[2] == 0x00 && IsLittleEndianMrc(b))
        return MrcOrMetafile(b);
    return IdentifyByMagic(b);
}

} // namespace Tav::Imaging::RawImage
