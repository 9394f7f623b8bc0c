#include "shared/AreaScaler.h"

#include <algorithm>
#include <vector>

namespace Lumora {

namespace {

/// One side, scaled as the other one is from `from` to `to` pixels.
uint32_t Scaled(uint32_t side, uint32_t from, uint32_t to)
{
    const uint64_t rounded = (uint64_t{side} * to + from / 2) / from;
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

Box Fitted(Box picture, Box room) noexcept
{
    if (picture.width <= room.width && picture.height <= room.height)
        return picture;
    if (uint64_t{picture.width} * room.height >= uint64_t{picture.height} * room.width)
        return {room.width, std::min(room.height, Scaled(picture.height, picture.width, room.width))};
    return {std::min(room.width, Scaled(picture.width, picture.height, room.height)), room.height};
}

std::unique_ptr<MemoryPicture> ScaledDown(const Picture& picture, Box size)
{
    auto scaled = std::make_unique<MemoryPicture>(size.width, size.height, picture.channels);
    const uint64_t area = uint64_t{picture.width} * picture.height;
    if (area == 0)
        return scaled;
    const size_t channels = picture.channels;
    const size_t newRow = scaled->RowBytes();
    std::vector<uint8_t> row(picture.RowBytes());

    // The sums of an old row, and of a new one. None exceeds 255 times the number of old pixels, which is
    // below 2^32.
    std::vector<uint64_t> sums(newRow);
    std::vector<uint64_t> totals(newRow);
    uint32_t summed = picture.height;
    uint32_t filled = 0;
    const auto finishRow = [&] {
        std::ranges::transform(totals, scaled->Row(filled).begin(), [area](uint64_t total) {
            return static_cast<uint8_t>((total + area / 2) / area);
        });
        std::ranges::fill(totals, 0);
        ++filled;
    };
    ForEachOverlap(picture.height, size.height, [&](uint32_t from, uint32_t to, uint64_t share) {
        if (to != filled)
            finishRow();
        if (from != summed)
        {
            picture.CopyRow(from, row.data());
            std::ranges::fill(sums, 0);
            ForEachOverlap(picture.width, size.width, [&](uint32_t x, uint32_t newX, uint64_t part) {
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
