#pragma once

#include "formats/hdf/HdfContents.h"
#include "formats/hdf/entries/HdfSelection.h"
#include "platform/jpeg/JpegDecoder.h"

#include <cstdint>
#include <string>

namespace Tav::Imaging::RawImage {

/// Finds every dataset of an HDF5 file that can be shown, in the order of the names in each group.
class HdfDiscovery
{
public:
    /// Looks at all datasets of an open file.
    explicit HdfDiscovery(HdfContents& file);

    HdfSelection found;
    /// The last embedded thumbnail decoded, and its path; empty without one.
    JpegPicture thumbnail;
    std::string thumbnailPath;

private:
    [[nodiscard]] bool AddThumbnail(HdfContents& file, const std::string& path);
    /// Adds an image if it can be shown. Otherwise skips it, with a diagnostic line if the reason is useful.
    void AddImage(HdfContents& file, const HdfCandidate& candidate);
    /// Adds as many frames of the size and type of the first as the dataset holds.
    void AddFrames(HdfContents& file, HdfImageEntry first);

    uint32_t thumbnailCount = 0;
};

} // namespace Tav::Imaging::RawImage
