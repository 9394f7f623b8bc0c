#pragma once

#include "formats/HdfImageEntry.h"
#include "platform/JpegDecoder.h"

#include <H5Ipublic.h>
#include <H5public.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Finds every dataset of an HDF5 file that can be shown, in the order of the names in each group.
class HdfDiscovery
{
public:
    /// Walks the groups of an open file.
    void Walk(hid_t file);

    std::vector<HdfImageRun> runs;
    /// The embedded picture in small that was decoded last, and its path; empty without one.
    JpegPicture thumbnail;
    std::string thumbnailPath;

private:
    void WalkGroup(hid_t group, const std::string& prefix, uint32_t depth);
    void CheckDataset(hid_t group, const std::string& name, const std::string& path);
    void CheckImage(hid_t group, const std::string& name, const std::string& path);
    [[nodiscard]] bool AddThumbnail(hid_t group, const std::string& name, const std::string& path);

    /// Addresses of the groups that have been walked.
    std::vector<haddr_t> visited;
    uint32_t thumbnailCount = 0;
};

/// Decodes the JPEG file that a dataset holds.
[[nodiscard]] std::optional<JpegPicture> DecodeHdfThumbnail(hid_t location, const std::string& name);

} // namespace Tav::Imaging::RawImage
