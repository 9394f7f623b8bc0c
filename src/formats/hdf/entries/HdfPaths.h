#pragma once

#include <string>

namespace Tav::Imaging::RawImage {

/// True for the path of the embedded thumbnail, in any letter case.
[[nodiscard]] bool IsThumbnailPath(const std::string& path);

/// True for a path in the group of images, whose name may have any letter case.
[[nodiscard]] bool IsInImageGroup(const std::string& path);

} // namespace Tav::Imaging::RawImage
