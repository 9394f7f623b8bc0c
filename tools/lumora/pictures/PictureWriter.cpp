#include "lumora/pictures/PictureWriter.h"

#include <algorithm>
#include <vector>

namespace Lumora {

Box WritePicture(Imaging& imaging, const Picture& picture, const std::wstring& path, PictureFormat format)
{
    // Enough rows at a time that the calls cost nothing beside the pixels.
    constexpr size_t bytesAtATime = size_t{1} << 18;
    const size_t rowBytes = picture.RowBytes();
    const size_t rowsAtATime =
        std::clamp<size_t>(bytesAtATime / std::max<size_t>(rowBytes, 1), 1, std::max(picture.height, 1U));
    PictureWriter writer(imaging, path, format, {picture.width, picture.height}, picture.channels);
    std::vector<uint8_t> rows(rowsAtATime * rowBytes);
    for (uint32_t row = 0; row < picture.height;)
    {
        const uint32_t count = std::min(static_cast<uint32_t>(rowsAtATime), picture.height - row);
        for (uint32_t index = 0; index < count; ++index)
            picture.CopyRow(row + index, rows.data() + index * rowBytes);
        writer.WriteRows(count, static_cast<uint32_t>(rowBytes), std::span(rows).first(count * rowBytes));
        row += count;
    }
    writer.Finish();
    return {picture.width, picture.height};
}

} // namespace Lumora
