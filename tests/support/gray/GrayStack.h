#pragma once

#include "support/ByteWriter.h"
#include "support/files/MrcFile.h"

#include <array>
#include <cstdint>
#include <vector>

/// What the sections of a gray stack look like: rows of 4 pixels from top to bottom, without padding.
inline const std::array<Bytes, 3> grayPictures = {{
    {0, 10, 20, 30, 40, 50, 60, 255},
    {255, 200, 150, 100, 80, 70, 5, 0},
    {9, 8, 0, 255, 6, 5, 4, 3},
}};

/// An MRC stack of up to three 16-bit sections of 4 x 2 pixels. The samples of a section run over 256
/// values, so its picture shows each of them less the smallest.
inline Bytes GrayStack(uint32_t sections)
{
    ByteWriter samples;
    for (uint32_t section = 0; section < sections; ++section)
    {
        for (const uint8_t brightness : grayPictures.at(section))
            samples.Put(static_cast<uint16_t>(1000 * (section + 1) + brightness));
    }
    return MrcFile().Size(4, 2, sections).Mode(6).Samples(samples.bytes).Build();
}
