#include "core/display/CopyArea.h"

#include <algorithm>

namespace Tav::Imaging::RawImage {

CopyResult CopyArea(const DisplayPicture& picture, const std::optional<PictureArea>& wanted,
                    const RowBuffer& buffer) noexcept
{
    if (!buffer.bytes)
        return CopyResult::InvalidArgument;
    const PictureArea area = wanted.value_or(
        PictureArea{0, 0, static_cast<int32_t>(picture.width), static_cast<int32_t>(picture.height)});
    if (area.width < 0 || area.height < 0 || area.x < 0 || area.y < 0)
        return CopyResult::InvalidArgument;
    if (int64_t{area.x} + area.width > picture.width || int64_t{area.y} + area.height > picture.height)
        return CopyResult::InvalidArgument;
    if (buffer.stride == 0)
        return CopyResult::InvalidArgument;
    const auto rows = static_cast<size_t>(area.height);
    if (buffer.size / buffer.stride < rows)
        return CopyResult::BufferTooSmall;

    const size_t pixelBytes = BytesPerPixel(picture.format);
    const size_t rowBytes = pixelBytes * static_cast<size_t>(area.width);
    const auto left = static_cast<size_t>(area.x);
    const auto top = static_cast<size_t>(area.y);
    for (size_t row = 0; row < rows; ++row)
    {
        const size_t source = pixelBytes * (left + (top + row) * picture.width);
        const size_t target = row * buffer.stride;
        std::copy_n(picture.pixels.data() + source, std::min(rowBytes, buffer.size - target),
                    buffer.bytes + target);
    }
    return CopyResult::Copied;
}

} // namespace Tav::Imaging::RawImage
