#pragma once

#include "core/PixelType.h"

#include <H5Ipublic.h>

#include <cstddef>

// The code in this folder runs in the sandbox, together with the HDF5 library. It checks nothing for safety's
// sake: whatever a file makes the library do, it does to the sandbox alone.

namespace Tav::Imaging::RawImage {

/// Starts the library and opens a file that lies in memory, and stays there, read-only. The file's
/// identifier; negative on failure.
[[nodiscard]] hid_t OpenHdfFileImage(void* image, size_t size);

/// The first string of a dataset of variable-length strings, in memory of its own; null for any other
/// dataset.
[[nodiscard]] char* ReadHdfStringDataset(hid_t location, const char* name);

/// The pixel type of a dataset's elements in memory; Unknown for a type that no picture has.
[[nodiscard]] PixelType NativePixelType(hid_t dataset);

/// The library's type for samples of a pixel type; negative where it has none.
[[nodiscard]] hid_t HdfMemoryType(PixelType pixelType);

/// True for a dataset whose samples lie in other files.
[[nodiscard]] bool IsStoredElsewhere(hid_t dataset);

} // namespace Tav::Imaging::RawImage
