#include "formats/hdf/entries/HdfPaths.h"

#include "core/stream/StreamReader.h"
#include "formats/hdf/inside/HdfNames.h"

#include <string_view>

namespace Tav::Imaging::RawImage {

bool IsThumbnailPath(const std::string& path)
{
    constexpr std::string_view thumbnail = hdfThumbnailPath;
    return path.size() == thumbnail.size() && ToLower(path) == thumbnail;
}

bool IsInImageGroup(const std::string& path)
{
    constexpr std::string_view group = hdfImageGroup;
    return ToLower(path.substr(0, group.size())) == group;
}

} // namespace Tav::Imaging::RawImage
