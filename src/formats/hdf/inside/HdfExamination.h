#pragma once

#include "formats/hdf/inside/HdfCandidate.h"

#include <H5Ipublic.h>

namespace Tav::Imaging::RawImage {

/// Finds out about a dataset of a group what it takes to tell whether it can be shown. False for one that is
/// no image: by its attribute CLASS, unless its path says that it is, by the type of its samples, or because
/// they lie in other files.
[[nodiscard]] bool ExamineHdfDataset(hid_t group, const char* name, bool isCalledImage,
                                     HdfCandidate& candidate);

} // namespace Tav::Imaging::RawImage
