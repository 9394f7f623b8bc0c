#include "formats/hdf/entries/HdfPaths.h"

#include "core/stream/StreamReader.h"
#include "formats/hdf/inside/HdfNames.h"

#include <algorithm>
#include <string_view>

namespace Tav::Imaging::RawImage {

namespace {

/// Whether a name can be compared with names in lowercase.
constexpr bool IsLowercase(std::string_view name)
{
    return std::ranges::none_of(name, [](char letter) { return letter >= 'A' && letter <= 'Z'; });
}
static_assert(IsLowercase(hdfThumbnailPath) && IsLowercase(hdfImageGroup));

} // namespace

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
