#include "lumora/pictures/PictureFile.h"

namespace Lumora {

namespace {

std::wstring FramesOf(uint32_t count)
{
    return L"the file has " + std::to_wstring(count) + (count == 1 ? L" frame" : L" frames");
}

} // namespace

std::unique_ptr<Picture> PictureFile::Frame(uint32_t index, std::optional<Box> box) const
{
    if (const uint32_t count = FrameCount(); index >= count)
        throw Failure{L"there is no frame " + std::to_wstring(index) + L"; " + FramesOf(count)};
    std::unique_ptr<Picture> picture = file.Frame(index);
    if (!box || (picture->width <= box->width && picture->height <= box->height))
        return picture;
    return ScaledDown(*picture, Fitted({picture->width, picture->height}, *box));
}

Failure NoFrames(uint32_t frameCount)
{
    return {L"none of these frames is there; " + FramesOf(frameCount)};
}

PixelBlock CopyOf(const Picture& picture)
{
    PixelBlock block = {picture.width, picture.height, {}};
    block.pixels.resize(block.Stride() * block.height);
    for (uint32_t row = 0; row < picture.height; ++row)
    {
        uint8_t* const target = block.pixels.data() + row * block.Stride();
        picture.CopyRow(row, target);
        if (picture.channels == PixelBlock::bytesPerPixel)
            continue;
        // From the end, so that no gray pixel is overwritten before it is read.
        for (size_t column = picture.width; column-- > 0;)
        {
            const uint8_t gray = target[column];
            for (size_t channel = 0; channel < PixelBlock::bytesPerPixel; ++channel)
                target[column * PixelBlock::bytesPerPixel + channel] = gray;
        }
    }
    return block;
}

} // namespace Lumora
