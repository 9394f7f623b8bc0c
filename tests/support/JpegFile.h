#pragma once

#include "support/ByteWriter.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

/// A colour as JPEG stores it: brightness and the two differences of colour, gray at 128.
struct JpegColour
{
    uint8_t y;
    uint8_t cb = 128;
    uint8_t cr = 128;
};

/// Builds a colour JPEG file of blocks of 8 x 8 pixels, each of one colour, so that every decoder shows the
/// same pixels. All quantisation steps are 1, and of each block only the mean is coded.
class JpegFile
{
public:
    JpegFile(uint16_t width, uint16_t height) : width(width), height(height) {}

    /// The colour of the next block, row by row.
    JpegFile& Block(JpegColour colour)
    {
        const std::array<uint8_t, 3> stored = {colour.y, colour.cb, colour.cr};
        for (size_t i = 0; i < stored.size(); ++i)
        {
            const int mean = 8 * (stored[i] - 128);
            PutDifference(mean - means[i]);
            means[i] = mean;
        }
        return *this;
    }

    [[nodiscard]] Bytes Build() const
    {
        ByteWriter file{Tav::Imaging::RawImage::ByteOrder::BigEndian};
        file.Text("\xFF\xD8");
        file.Text("\xFF\xDB").Put(uint16_t{67}).Put(uint8_t{0});
        for (int i = 0; i < 64; ++i)
            file.Put(uint8_t{1});
        // Three components of 8 bits, none of them coarser than the others.
        file.Text("\xFF\xC0").Put(uint16_t{17}).Put(uint8_t{8}).Put(height).Put(width);
        file.Put(uint8_t{3});
        for (uint8_t component = 1; component <= 3; ++component)
            file.Put(component).Put(uint8_t{0x11}).Put(uint8_t{0});
        // The number of bits of a difference, 0 to 11, is coded in 4 bits; the end of a block in 1.
        file.Text("\xFF\xC4").Put(uint16_t{19 + 12}).Put(uint8_t{0x00});
        for (int length = 1; length <= 16; ++length)
            file.Put(static_cast<uint8_t>(length == 4 ? 12 : 0));
        for (uint8_t count = 0; count < 12; ++count)
            file.Put(count);
        file.Text("\xFF\xC4").Put(uint16_t{19 + 1}).Put(uint8_t{0x10});
        for (int length = 1; length <= 16; ++length)
            file.Put(static_cast<uint8_t>(length == 1 ? 1 : 0));
        file.Put(uint8_t{0});
        file.Text("\xFF\xDA").Put(uint16_t{12}).Put(uint8_t{3});
        for (uint8_t component = 1; component <= 3; ++component)
            file.Put(component).Put(uint8_t{0});
        file.Put(uint8_t{0}).Put(uint8_t{63}).Put(uint8_t{0});
        file.Put(Scan());
        file.Text("\xFF\xD9");
        return std::move(file.bytes);
    }

private:
    void PutBits(uint32_t value, uint32_t count)
    {
        while (count-- > 0)
            bits.push_back((value >> count & 1) != 0);
    }

    void PutDifference(int difference)
    {
        uint32_t count = 0;
        while (std::abs(difference) >> count != 0)
            ++count;
        PutBits(count, 4);
        PutBits(static_cast<uint32_t>(difference > 0 ? difference : difference + (1 << count) - 1), count);
        PutBits(0, 1);
    }

    /// The bits as bytes, the last one filled with ones; a zero follows every byte of ones.
    [[nodiscard]] Bytes Scan() const
    {
        Bytes bytes;
        for (size_t i = 0; i < bits.size(); i += 8)
        {
            uint32_t byte = 0;
            for (size_t j = i; j < i + 8; ++j)
                byte = byte << 1 | (j >= bits.size() || bits[j] ? 1U : 0U);
            bytes.push_back(static_cast<uint8_t>(byte));
            if (byte == 0xFF)
                bytes.push_back(0);
        }
        return bytes;
    }

    uint16_t width;
    uint16_t height;
    std::array<int, 3> means = {};
    std::vector<bool> bits;
};
