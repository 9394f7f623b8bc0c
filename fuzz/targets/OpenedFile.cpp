#include "OpenedFile.h"

#include "support/display/ReferenceDisplay.h"

#include "core/samples/Vectorised.h"

#include <algorithm>

using namespace Tav::Imaging::RawImage;

OpenedFile::OpenedFile(std::span<const uint8_t> file, uint32_t readMode)
    : stream(Bytes{file.begin(), file.end()})
{
    UseVectors(file.size() % 2 == 0 ? Vectors::Avx2 : Vectors::Baseline);
    constexpr uint32_t frames[] = {0, 0, 0, 0, 0, 1, 1, 2};
    const uint32_t frameIndex = frames[file.size() / 2 % std::size(frames)];

    DiagnosticLines diagnostics;
    const bool opened = image.Open(&stream, readMode, frameIndex);
    lines = diagnostics.Take();
    Require(stream.references == 0);
    Require(opened == (image.Reader() != nullptr));
    Require(!opened || frameIndex < image.Reader()->frameCount);
}

void OpenedFile::RequirePictureOfStatedSize() const
{
    const RawImageBase* const reader = image.Reader();
    if (!reader)
        return;
    const bool isColour = reader->pixelType == PixelType::RGB24 || reader->pixelType == PixelType::RGBA32;
    const size_t pictureBytes = size_t{reader->width} * reader->height * (isColour ? 3 : 1);
    Require(reader->displayPixels.size() == (reader->readMode == readModeFrame ? pictureBytes : 0));
}

void OpenedFile::RequireReferencePicture() const
{
    RequirePictureOfStatedSize();
    const RawImageBase* const reader = image.Reader();
    if (!reader)
        return;
    const auto samplesAt = static_cast<ptrdiff_t>(stream.lastReadAt);
    const DisplayedFrame expected =
        ReferenceDisplay({.pixelType = reader->pixelType,
                          .width = reader->width,
                          .height = reader->height,
                          .bytes = {stream.bytes.begin() + samplesAt, stream.bytes.end()},
                          .byteOrder = reader->byteOrder,
                          .flipVertical = reader->flipVertical,
                          .fileType = reader->fileType,
                          .xStride = reader->xStride,
                          .yStride = reader->yStride});
    Require(expected.shown);
    Require(reader->displayPixels == expected.pixels);
    // The reader has written its own lines before those of the conversion.
    Require(lines.size() >= expected.lines.size());
    Require(std::equal(expected.lines.rbegin(), expected.lines.rend(), lines.rbegin()));
}
