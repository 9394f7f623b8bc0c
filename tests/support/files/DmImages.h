#pragma once

#include "support/files/DmFile.h"

#include <cstdint>
#include <utility>
#include <vector>

/// 10000 samples of 16 bits, the fewest that make an image: frames of three whose pictures are 0, `number`,
/// 255, then 0, `number` + 1, 255 and so on.
inline Bytes NumberedSamples(uint8_t number)
{
    ByteWriter writer;
    for (uint32_t i = 0; i < 10000; ++i)
    {
        const uint32_t frame[] = {0, (number + i / 3) % 255, 255};
        writer.Put(static_cast<uint16_t>(frame[i % 3]));
    }
    return std::move(writer.bytes);
}

/// An image of 3 x 1 unsigned samples whose picture is 0, `number`, 255.
inline DmImage NumberedImage(uint8_t number)
{
    return {.dataType = 10,
            .width = 3,
            .height = 1,
            .elementType = DmType::uint16,
            .elementCount = 10000,
            .samples = NumberedSamples(number)};
}

/// The same in a file of few bytes: the size of its array, four times the number of elements, is 8 in 32
/// bits.
inline DmImage SmallNumberedImage(uint8_t number)
{
    return {.dataType = 10,
            .width = 3,
            .height = 1,
            .elementType = DmType::uint32,
            .elementCount = 0x40000002,
            .samples = {0, 0, number, 0, 255, 0, 0, 0}};
}

/// The small picture in colour that comes first in most files: 2 x 1 pixels with the colours `number`, 2, 3
/// and 4, 5, 6.
inline DmImage Thumbnail(uint8_t number)
{
    return {.dataType = 23,
            .width = 2,
            .height = 1,
            .elementType = DmType::int32,
            .elementCount = 0x40000002,
            .samples = {number, 2, 3, 0, 4, 5, 6, 0}};
}
