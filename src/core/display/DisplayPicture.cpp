#include "core/display/DisplayPicture.h"

#include <algorithm>
#include <utility>

namespace Tav::Imaging::RawImage {

DisplayPicture TakeDisplayPicture(RawImageBase& reader)
{
    DisplayPicture picture;
    picture.width = reader.width;
    picture.height = reader.height;
    if (picture.width == 0 || picture.height == 0)
        return picture;

    if (reader.pixelType == PixelType::RGB24 || reader.pixelType == PixelType::RGBA32)
        picture.format = PixelType::RGB24;
    picture.pixels = std::move(reader.displayPixels);
    const size_t pictureBytes = size_t{BytesPerPixel(picture.format)} * picture.width * picture.height;
    if (picture.pixels.size() != pictureBytes)
    {
        FrameBytes whole(pictureBytes);
        std::copy_n(picture.pixels.begin(), std::min(picture.pixels.size(), pictureBytes), whole.data());
        picture.pixels = std::move(whole);
    }
    return picture;
}

} // namespace Tav::Imaging::RawImage
