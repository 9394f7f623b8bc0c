#pragma once

#include "core/PixelType.h"
#include "formats/HdfImageEntry.h"
#include "platform/Platform.h"

#include <H5Ipublic.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Tav::Imaging::RawImage {

// Everything here uses the HDF5 library, so the caller must have started it, which takes its mutex.

/// Reads the whole stream into `image`, which must outlive the library, and opens it as a read-only HDF5
/// file. The file's identifier; -1, after a diagnostic line for a size that does not fit, on failure.
[[nodiscard]] hid_t OpenHdfFileImage(IStream* stream, uint64_t size, std::vector<uint8_t>& image);

/// Sets `value` to the first string of a dataset of variable-length strings, up to its zero byte.
[[nodiscard]] bool ReadHdfStringDataset(hid_t location, const std::string& name, std::string& value);

/// The pixel type of a dataset's elements in memory; Unknown for a type that no picture has.
[[nodiscard]] PixelType NativePixelType(hid_t dataset);

/// True for a dataset whose samples lie in other files, which are never opened.
[[nodiscard]] bool IsStoredElsewhere(hid_t dataset);

/// The bytes that a dataset's samples take in the file; 0 when there are none, or when they lie in more
/// chunks than a file of its size can have.
[[nodiscard]] uint64_t HdfStoredBytes(hid_t dataset);

/// Reads a whole dataset, converted to `memoryType`, when it has exactly `elementCount` elements. The buffer
/// must hold them.
[[nodiscard]] bool ReadHdfDataset(hid_t dataset, hid_t memoryType, uint64_t elementCount, void* buffer);

/// Reads one frame of a series of dimensions (height, width, frames) into a buffer of width x height samples
/// of the entry's pixel type.
[[nodiscard]] bool ReadHdfSeriesFrame(hid_t location, const HdfImageEntry& entry, uint8_t* buffer);

/// True for the path of the picture in small that some programs embed, in whatever case its letters are.
[[nodiscard]] bool IsThumbnailPath(const std::string& path);

} // namespace Tav::Imaging::RawImage
