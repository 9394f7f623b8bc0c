#pragma once

#include "support/BytesAndLines.h"

#include "core/FileType.h"
#include "core/PixelType.h"
#include "core/stream/ByteOrder.h"

#include <cstdint>

/// One stored frame: how its samples are laid out, and the stream's bytes from its first sample to the end.
struct StoredFrame
{
    Tav::Imaging::RawImage::PixelType pixelType = Tav::Imaging::RawImage::PixelType::UInt8;
    uint32_t width = 0;
    uint32_t height = 0;
    Bytes bytes = {};
    Tav::Imaging::RawImage::ByteOrder byteOrder = Tav::Imaging::RawImage::ByteOrder::LittleEndian;
    bool flipVertical = false;
    Tav::Imaging::RawImage::FileType fileType = Tav::Imaging::RawImage::FileType::None;
    uint32_t xStride = 0;
    uint32_t yStride = 0;
};

/// What becomes of a frame: whether it could be shown, its picture, and the lines written on the way.
struct DisplayedFrame
{
    bool shown = false;
    Bytes pixels;
    Lines lines;
};

/// The display picture of a frame, computed slowly and plainly. It shares no arithmetic with the product,
/// so that each can be held against the other.
[[nodiscard]] DisplayedFrame ReferenceDisplay(const StoredFrame& frame);
