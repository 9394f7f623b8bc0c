#pragma once

#include <string>

namespace Tav::Imaging::RawImage {

/// True for the path of the embedded thumbnail, in whatever case its letters are.
[[nodiscard]] bool IsThumbnailPath(const std::string& path);

/// True for a path in the group of images, in whatever case the letters of the group are.
[[nodiscard]] bool IsInImageGroup(const std::string& path);

} // namespace Tav::Imaging::RawImage
