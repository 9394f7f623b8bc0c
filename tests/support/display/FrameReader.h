#pragma once

#include "support/ByteWriter.h"
#include "support/display/ReferenceDisplay.h"

#include "core/RawImageBase.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

/// A reader that knows its frame from the start, so that a test can call the conversion by itself.
class FrameReader : public Tav::Imaging::RawImage::RawImageBase
{
public:
    explicit FrameReader(const StoredFrame& frame)
    {
        pixelType = frame.pixelType;
        width = frame.width;
        height = frame.height;
        byteOrder = frame.byteOrder;
        flipVertical = frame.flipVertical;
        fileType = frame.fileType;
        xStride = frame.xStride;
        yStride = frame.yStride;
    }

    /// The stream is the frame and nothing else.
    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t /*frameIndex*/) override
    {
        readMode = mode;
        return ConvertToDisplay(stream, streamSize, 0);
    }

    using RawImageBase::ConvertToDisplay;
    using RawImageBase::ReadFramePixels;
};

/// What the product makes of a frame that is stored somewhere in the middle of a stream.
[[nodiscard]] DisplayedFrame ConvertFrame(const StoredFrame& frame);

/// Expects that the product shows a frame as this picture, and writes these lines.
void ExpectDisplay(const StoredFrame& frame, const Bytes& pixels, const Lines& lines = {});

/// Expects that the product makes of a frame what the reference makes of it.
void ExpectReferenceDisplay(const StoredFrame& frame);

/// Numbers as a file stores them.
template <typename Number>
[[nodiscard]] Bytes
Stored(std::initializer_list<Number> numbers,
       Tav::Imaging::RawImage::ByteOrder order = Tav::Imaging::RawImage::ByteOrder::LittleEndian)
{
    ByteWriter writer{order};
    for (const Number number : numbers)
        writer.Put(number);
    return std::move(writer.bytes);
}
