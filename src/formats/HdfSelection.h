#pragma once

#include "formats/HdfImageEntry.h"

#include <vector>

namespace Tav::Imaging::RawImage {

/// Chooses and orders the frames of a file: the one that stands for the file first, 250 at most. Tells how
/// many there were when that is less and `isReductionTold`.
[[nodiscard]] std::vector<HdfImageEntry> SelectHdfEntries(std::vector<HdfImageRun> runs,
                                                          bool isReductionTold);

} // namespace Tav::Imaging::RawImage
