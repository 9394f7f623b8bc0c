#pragma once

#include "formats/HdfObject.h"
#include "formats/HdfSelection.h"
#include "platform/JpegDecoder.h"

#include <H5Ipublic.h>
#include <H5public.h>

#include <cstdint>
#include <list>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Finds every dataset of an HDF5 file that can be shown, in the order of the names in each group.
class HdfDiscovery
{
public:
    /// Walks the groups of an open file.
    void Walk(hid_t file);

    HdfSelection found;
    /// The embedded picture in small that was decoded last, and its path; empty without one.
    JpegPicture thumbnail;
    std::string thumbnailPath;

private:
    /// A group that is being walked.
    struct Level
    {
        Level(hid_t identifier, size_t length, bool isImage);

        HdfGroup group;
        std::vector<std::string> names;
        size_t next = 0;
        /// The length of the group's path, and whether "image" stands in it in any letter case.
        size_t pathLength;
        bool isCalledImage;
    };

    void Enter(hid_t parent, const std::string& name, bool isCalledImage);
    void Visit(const Level& level, const std::string& name);
    void CheckDataset(hid_t group, const std::string& name, bool isCalledImage);
    void CheckImage(hid_t group, const std::string& name, bool isCalledImage);
    [[nodiscard]] bool AddThumbnail(hid_t group, const std::string& name);

    /// The groups from the root to the one at hand; the stack belongs to the thread that asks.
    std::list<Level> levels;
    /// The path of the object at hand.
    std::string path;
    /// Addresses of the groups that have been walked.
    std::set<haddr_t> visited;
    uint32_t thumbnailCount = 0;
};

/// Decodes the JPEG file that a dataset holds.
[[nodiscard]] std::optional<JpegPicture> DecodeHdfThumbnail(hid_t location, const std::string& name);

} // namespace Tav::Imaging::RawImage
