#pragma once

#include "core/FileType.h"
#include "core/PixelType.h"
#include "core/samples/FrameBytes.h"
#include "core/stream/ByteOrder.h"
#include "platform/Platform.h"

#include <cstdint>
#include <string>

namespace Tav::Imaging::RawImage {

/// `readMode` of an open that wants header facts only.
constexpr uint32_t readModeHeader = 0;
/// `readMode` of an open that also decodes one frame into the display picture.
constexpr uint32_t readModeFrame = 1;

/// What every format reader fills: the facts of one opened frame and its display picture.
class RawImageBase
{
public:
    virtual ~RawImageBase() = default;

    /// Reads the header and, unless `mode` is 0, decodes frame `frameIndex` into `displayPixels`.
    /// `streamSize` is the stream's size in bytes. Returns false for bad data, usually after a diagnostic
    /// line. The fields then keep what was found so far.
    virtual bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) = 0;

    FileType fileType = FileType::None;
    ByteOrder byteOrder = ByteOrder::LittleEndian;
    uint32_t readMode = readModeFrame;
    PixelType pixelType = PixelType::Unknown;
    /// The picture's row y is the frame's row height - 1 - y.
    bool flipVertical = false;
    /// The program that wrote the file, if the reader knows it.
    std::wstring software;
    std::wstring formatDetails;
    /// Frame size in pixels.
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t frameCount = 0;
    /// Distance in bytes between horizontally and vertically adjacent samples in the stream; both 0 for a
    /// packed frame.
    uint32_t xStride = 0;
    uint32_t yStride = 0;
    /// The display picture: one byte per pixel (gray), or three for RGB24 and RGBA32 frames, rows top-down
    /// without padding.
    FrameBytes displayPixels;

protected:
    /// Reads the frame whose first sample is at `dataOffset` and builds `displayPixels` from it. If
    /// `readMode` is 0, does nothing and returns true. Returns false, after a diagnostic line, if the size is
    /// impossible or the stream does not hold the frame. Returns false without a line for an unknown pixel
    /// type.
    [[nodiscard]] bool ConvertToDisplay(IStream* stream, uint64_t streamSize, uint64_t dataOffset);

    /// Fills `samples` with the frame's samples, packed, in the stream's byte order. With strides, bytes from
    /// beyond the frame follow the samples. If the stream does not hold the frame, returns false and
    /// allocates nothing.
    [[nodiscard]] bool ReadFramePixels(FrameBytes& samples, IStream* stream, uint64_t streamSize,
                                       uint64_t dataOffset) const;
};

} // namespace Tav::Imaging::RawImage
