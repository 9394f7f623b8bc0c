#pragma once

#include "formats/hdf/HdfContents.h"
#include "platform/jpeg/JpegDecoder.h"

#include <optional>
#include <string>

namespace Tav::Imaging::RawImage {

/// Decodes the thumbnail, a JPEG file that a dataset holds.
[[nodiscard]] std::optional<JpegPicture> DecodeHdfThumbnail(HdfContents& file, const std::string& path);

} // namespace Tav::Imaging::RawImage
