#pragma once

#include "core/display/DisplayPicture.h"

#include <cstdint>
#include <optional>

namespace Tav::Imaging::RawImage {

/// A rectangle of a picture, in pixels.
struct PictureArea
{
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
};

/// A caller's buffer for the rows of an area. Each row begins `stride` bytes after the one before.
struct RowBuffer
{
    uint8_t* bytes = nullptr;
    uint32_t stride = 0;
    /// In bytes. It must have room for a whole stride for each row.
    uint32_t size = 0;
};

enum class CopyResult
{
    Copied,
    /// There is no buffer or no stride, or the area is not within the picture.
    InvalidArgument,
    BufferTooSmall,
};

/// Copies the area, or the whole picture, into the buffer. Where a stride is shorter than a row, the rows
/// overlap. Nothing is written beyond the buffer.
[[nodiscard]] CopyResult CopyArea(const DisplayPicture& picture, const std::optional<PictureArea>& wanted,
                                  const RowBuffer& buffer) noexcept;

} // namespace Tav::Imaging::RawImage
