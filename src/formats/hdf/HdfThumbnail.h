#pragma once

#include "formats/hdf/HdfContents.h"
#include "platform/JpegDecoder.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Tav::Imaging::RawImage {

/// The length of the path of the picture in small that some programs embed.
constexpr uint32_t hdfThumbnailPathLength = 14;

/// True for this path, in whatever case its letters are.
[[nodiscard]] bool IsThumbnailPath(const std::string& path);

/// Decodes the JPEG file that a dataset holds.
[[nodiscard]] std::optional<JpegPicture> DecodeHdfThumbnail(HdfContents& file, const std::string& path);

} // namespace Tav::Imaging::RawImage
