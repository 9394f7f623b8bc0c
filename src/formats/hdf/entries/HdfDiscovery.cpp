#include "formats/hdf/entries/HdfDiscovery.h"

#include "formats/hdf/HdfLog.h"
#include "formats/hdf/HdfThumbnail.h"
#include "formats/hdf/entries/HdfPaths.h"
#include "formats/hdf/inside/HdfNames.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

struct ImageSize
{
    uint64_t width = 0;
    uint64_t height = 0;
    uint64_t planes = 1;
};

std::optional<ImageSize> SizeOf(const HdfCandidate& image, std::string_view interlace)
{
    if (image.dimensions < 2 || image.dimensions > 3)
        return std::nullopt;
    const bool hasPlanes = image.dimensions == 3;
    if (interlace == hdfPixelInterlace && hasPlanes)
        return ImageSize{image.sides[1], image.sides[0], image.sides[2]};
    if (interlace == hdfPlaneInterlace)
        return hasPlanes ? std::optional{ImageSize{image.sides[2], image.sides[1], image.sides[0]}}
                         : std::nullopt;
    return ImageSize{image.sides[1], image.sides[0], 1};
}

/// The interlace that the attribute's text means; nothing, after a diagnostic line, if it cannot be shown.
std::optional<HdfInterlace> InterlaceOf(std::string_view text, std::string_view path)
{
    if (text.empty())
        return path.ends_with(hdfSeriesName) ? HdfInterlace::Plane : HdfInterlace::Undefined;
    if (text == hdfPixelInterlace)
        return HdfInterlace::Pixel;
    if (text == hdfPlaneInterlace)
        return HdfInterlace::Plane;
    hdfLog.Write(text == hdfLineInterlace ? L"Skipped image with not supported scan-line interlacing"
                                          : L"Skipped image with unknown interlace format");
    return std::nullopt;
}

bool IsShownSide(uint64_t side)
{
    return side >= 32 && side <= 8192;
}

} // namespace

HdfDiscovery::HdfDiscovery(HdfContents& file)
{
    while (file.GoToNextDataset())
    {
        const std::optional<std::string> path = file.Path(sizeof(hdfThumbnailPath) - 1);
        if (path && IsThumbnailPath(*path))
        {
            if (!AddThumbnail(file, *path))
                hdfLog.Write(L"Could not read jpeg image");
        }
        else if (const std::optional<HdfCandidate> candidate = file.Examine())
        {
            AddImage(file, *candidate);
        }
    }
}

bool HdfDiscovery::AddThumbnail(HdfContents& file, const std::string& path)
{
    // There are thousands of such names, which differ in letter case, and each takes time.
    constexpr uint32_t mostThumbnails = 16;
    if (++thumbnailCount > mostThumbnails)
        return false;
    std::optional<JpegPicture> picture = DecodeHdfThumbnail(file, path);
    if (!picture)
        return false;
    thumbnail = std::move(*picture);
    thumbnailPath = path;
    found.Add({.width = thumbnail.width,
               .height = thumbnail.height,
               .seriesFrames = thumbnail.frameCount,
               .pixelType = PixelType::RGB24,
               .path = path,
               .interlace = HdfInterlace::Pixel},
              1);
    return true;
}

void HdfDiscovery::AddImage(HdfContents& file, const HdfCandidate& candidate)
{
    const std::string_view interlaceText = candidate.interlace;
    const auto size = SizeOf(candidate, interlaceText);
    if (!size || candidate.palettes < 0)
        return;
    const std::optional<std::string> path = file.Path();
    // AddThumbnail handles thumbnails.
    if (!path || IsThumbnailPath(*path))
        return;
    const auto interlace = InterlaceOf(interlaceText, *path);
    if (!interlace)
        return;
    if (candidate.palettes >= 1)
        return hdfLog.Write(L"Skipped image with color palette");
    if (!IsShownSide(size->width) || !IsShownSide(size->height))
        return;
    const bool isRgb = candidate.pixelType == PixelType::UInt8 && size->planes == 3;
    if (isRgb && *interlace == HdfInterlace::Undefined)
        return hdfLog.Write(L"Skipped RGB image with undefined interlace format");
    AddFrames(file, {.width = static_cast<uint32_t>(size->width),
                     .height = static_cast<uint32_t>(size->height),
                     .pixelType = isRgb ? PixelType::RGB24 : candidate.pixelType,
                     .path = *path,
                     .interlace = *interlace});
}

void HdfDiscovery::AddFrames(HdfContents& file, HdfImageEntry first)
{
    const uint64_t frameBytes = uint64_t{BytesPerPixel(first.pixelType)} * first.height * first.width;
    const uint64_t storedBytes = file.StoredBytes(first.path);
    if (storedBytes == 0 || frameBytes == 0)
        return;
    if (storedBytes % frameBytes != 0)
        return hdfLog.Write(L"Skipped image series with invalid data size");
    const uint64_t frames = storedBytes / frameBytes;
    if (frames >= 2 && first.interlace != HdfInterlace::Plane)
        return hdfLog.Write(L"Skipped not supported image series");
    first.seriesFrames = static_cast<uint32_t>(std::min<uint64_t>(frames, UINT32_MAX));
    found.Add(first, frames);
}

} // namespace Tav::Imaging::RawImage
