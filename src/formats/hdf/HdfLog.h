#pragma once

#include "core/Diagnostics.h"

namespace Tav::Imaging::RawImage {

/// For all parts of the reader of HDF5 files.
constexpr ReaderLog hdfLog{L"HDF: "};

} // namespace Tav::Imaging::RawImage
