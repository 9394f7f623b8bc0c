#include "thumbnailer/AreaScaler.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Lumora {

using Tav::Imaging::RawImage::BytesPerPixel;
using Tav::Imaging::RawImage::DisplayPicture;
using Tav::Imaging::RawImage::FrameBytes;

namespace {

uint32_t Scaled(uint32_t side, uint32_t longer, uint32_t wantedLonger)
{
    const uint64_t rounded = (uint64_t{side} * wantedLonger + longer / 2) / longer;
    return std::max<uint32_t>(1, static_cast<uint32_t>(rounded));
}

/// Calls `add(from, to, share)` for every old place along one side and every new place that it overlaps. In
/// units in which an old place is `newCount` long, and a new one `oldCount`, the shares are whole numbers.
template <class Add>
void ForEachOverlap(uint32_t oldCount, uint32_t newCount, const Add& add)
{
    uint32_t to = 0;
    uint64_t roomLeft = oldCount;
    for (uint32_t from = 0; from < oldCount; ++from)
    {
        uint64_t rest = newCount;
        while (rest > 0)
        {
            const uint64_t share = std::min(rest, roomLeft);
            add(from, to, share);
            rest -= share;
            roomLeft -= share;
            if (roomLeft == 0)
            {
                ++to;
                roomLeft = oldCount;
            }
        }
    }
}

} // namespace

DisplayPicture ScaledDown(DisplayPicture picture, uint32_t longerSide)
{
    const uint32_t longer = std::max(picture.width, picture.height);
    if (longer <= longerSide || picture.width == 0 || picture.height == 0)
        return picture;

    DisplayPicture scaled;
    scaled.width = Scaled(picture.width, longer, longerSide);
    scaled.height = Scaled(picture.height, longer, longerSide);
    scaled.format = picture.format;
    const size_t channels = BytesPerPixel(picture.format);
    const size_t oldRow = channels * picture.width;
    const size_t newRow = channels * scaled.width;
    scaled.pixels = FrameBytes(newRow * scaled.height);

    // The sums of an old row, and of a new one. None exceeds 255 times the number of old pixels, which is
    // below 2^32.
    std::vector<uint64_t> sums(newRow);
    std::vector<uint64_t> totals(newRow);
    const uint64_t area = uint64_t{picture.width} * picture.height;
    uint32_t summed = picture.height;
    uint32_t filled = 0;
    const auto finishRow = [&] {
        std::ranges::transform(totals, scaled.pixels.data() + filled * newRow, [area](uint64_t total) {
            return static_cast<uint8_t>((total + area / 2) / area);
        });
        std::ranges::fill(totals, 0);
        ++filled;
    };
    ForEachOverlap(picture.height, scaled.height, [&](uint32_t from, uint32_t to, uint64_t share) {
        if (to != filled)
            finishRow();
        if (from != summed)
        {
            const uint8_t* const row = picture.pixels.data() + from * oldRow;
            std::ranges::fill(sums, 0);
            ForEachOverlap(picture.width, scaled.width, [&](uint32_t x, uint32_t newX, uint64_t part) {
                for (size_t channel = 0; channel < channels; ++channel)
                    sums[newX * channels + channel] += part * row[x * channels + channel];
            });
            summed = from;
        }
        for (size_t index = 0; index < newRow; ++index)
            totals[index] += share * sums[index];
    });
    finishRow();
    return scaled;
}

} // namespace Lumora
