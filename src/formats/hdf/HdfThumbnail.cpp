#include "formats/hdf/HdfThumbnail.h"

#include "formats/Identification.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Tav::Imaging::RawImage {

namespace {

/// True if one of our own readers would read the file. WIC would give such a thumbnail back to Lumora.
bool IsOwnFormat(const std::vector<uint8_t>& file)
{
    if (file.size() < identificationBytes)
        return false;
    switch (Identify(std::span<const uint8_t, identificationBytes>{file.data(), identificationBytes}))
    {
    case Identity::Unknown:
    case Identity::EnhancedMetafile:
    case Identity::Bitmap:
    case Identity::Jpeg:
    case Identity::TiffLittleEndian:
    case Identity::TiffBigEndian:
        return false;
    default:
        return true;
    }
}

} // namespace

std::optional<JpegPicture> DecodeHdfThumbnail(HdfContents& file, const std::string& path)
{
    constexpr uint64_t largestJpeg = 0x2000000;
    constexpr uint32_t longestSide = 8192;
    const std::optional<std::vector<uint8_t>> jpeg = file.ReadBytes(path, largestJpeg);
    if (!jpeg || IsOwnFormat(*jpeg))
        return std::nullopt;
    return DecodeJpeg(*jpeg, longestSide);
}

} // namespace Tav::Imaging::RawImage
