#pragma once

namespace Tav::Imaging::RawImage {

// The names in HDF5 files that mean something, and texts of attributes. They stand here for both sides of the
// sandbox. A name in small letters is compared whatever the case of the letters in the file.

/// The dataset of the embedded thumbnail, a JPEG file.
constexpr char hdfThumbnailPath[] = "/thumbnail.jpg";

/// The group that a file has for its images. Where it has one, no other images are shown.
constexpr char hdfImageGroup[] = "/data/image/";

/// A dataset with this in its path is an image without further signs, …
constexpr char hdfImageWord[] = "image";
/// … and so is one with the class of the HDF5 Image and Palette Specification.
constexpr char hdfClassAttribute[] = "CLASS";
constexpr char hdfImageClass[] = "IMAGE";

/// How a dataset of three dimensions is stored: also from that specification.
constexpr char hdfInterlaceAttribute[] = "INTERLACE_MODE";
constexpr char hdfPixelInterlace[] = "INTERLACE_PIXEL";
constexpr char hdfLineInterlace[] = "INTERLACE_LINE";
constexpr char hdfPlaneInterlace[] = "INTERLACE_PLANE";
/// A dataset of this name is a series of frames where the attribute is missing.
constexpr char hdfSeriesName[] = "/Data";

/// Datasets with JSON texts about the file, and what is looked up in them.
constexpr char hdfVersionText[] = "Version";
constexpr char hdfFormatKey[] = "format";
constexpr char hdfVersionKey[] = "version";
constexpr char hdfInfoText[] = "Info";
constexpr char hdfApplicationKey[] = "applicationVersion";

} // namespace Tav::Imaging::RawImage
