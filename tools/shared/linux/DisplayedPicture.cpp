#include "shared/linux/DisplayedPicture.h"

#include <algorithm>
#include <utility>

namespace Lumora {

using Tav::Imaging::RawImage::BytesPerPixel;
using Tav::Imaging::RawImage::DisplayPicture;

DisplayedPicture::DisplayedPicture(std::shared_ptr<const DisplayPicture> displayPicture) noexcept
    : Picture(displayPicture->width, displayPicture->height, BytesPerPixel(displayPicture->format)),
      picture(std::move(displayPicture))
{}

void DisplayedPicture::CopyRow(uint32_t row, uint8_t* target) const
{
    std::copy_n(picture->pixels.data() + row * RowBytes(), RowBytes(), target);
    if (channels == 1)
        return;
    // The display picture has red first.
    for (size_t pixel = 0; pixel < RowBytes(); pixel += channels)
        std::swap(target[pixel], target[pixel + 2]);
}

} // namespace Lumora
