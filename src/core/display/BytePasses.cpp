#include "core/display/BytePasses.h"

#include "core/samples/Image.h"
#include "core/samples/SampleDecoding.h"
#include "core/samples/Vectorised.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace Tav::Imaging::RawImage {

template <typename Word>
void SwapBytes(uint8_t* words, size_t count)
{
    Vectorised([=] {
        for (size_t i = 0; i < count; ++i)
        {
            const auto word = LoadLittleEndian<Word>(words + i * sizeof(Word));
            const Word swapped = sizeof(Word) == 2
                                     ? static_cast<Word>(__builtin_bswap16(static_cast<uint16_t>(word)))
                                     : static_cast<Word>(__builtin_bswap32(word));
            std::memcpy(words + i * sizeof(Word), &swapped, sizeof(swapped));
        }
    });
}

template void SwapBytes<uint16_t>(uint8_t*, size_t);
template void SwapBytes<uint32_t>(uint8_t*, size_t);

void FlipRows(uint8_t* rows, size_t rowBytes, size_t rowCount)
{
    for (size_t row = 0; row < rowCount / 2; ++row)
        std::swap_ranges(rows + row * rowBytes, rows + (row + 1) * rowBytes,
                         rows + (rowCount - 1 - row) * rowBytes);
}

size_t ZeroBytes(const uint8_t* bytes, size_t count)
{
    size_t zeros = 0;
    Vectorised([=, result = &zeros] {
        size_t found = 0;
        for (size_t begin = 0; begin < count; begin += 128)
        {
            // So few that they can be counted in a byte.
            const size_t end = std::min(count, begin + 128);
            uint8_t few = 0;
            for (size_t i = begin; i < end; ++i)
                few = static_cast<uint8_t>(few + (bytes[i] == 0));
            found += few;
        }
        *result = found;
    });
    return zeros;
}

void ShiftBytes(uint8_t* bytes, size_t count)
{
    Vectorised([=] {
        for (size_t i = 0; i < count; ++i)
            bytes[i] ^= 0x80;
    });
}

bool HasJump(const uint8_t* pixels, size_t width, size_t height)
{
    uint8_t widest = 0;
    for (size_t row = 0; row < height && widest <= 127; ++row)
    {
        Vectorised([=, rowPixels = pixels + row * width, result = &widest] {
            uint8_t most = 0;
            for (size_t column = 1; column < width; ++column)
            {
                const uint8_t left = rowPixels[column - 1];
                const uint8_t right = rowPixels[column];
                const auto difference = static_cast<uint8_t>(left > right ? left - right : right - left);
                most = difference > most ? difference : most;
            }
            *result = most;
        });
    }
    return widest > 127;
}

template <typename Real>
void ReplaceByMagnitudes(uint8_t* numbers, size_t count)
{
    Vectorised([=] {
        std::array<double, blockSamples> block;
        for (size_t done = 0; done < count; done += block.size())
        {
            const uint8_t* const stored = numbers + 2 * sizeof(Real) * done;
            const size_t size = std::min(block.size(), count - done);
            for (size_t i = 0; i < size; ++i)
            {
                const double real = LoadLittleEndian<Real>(stored + 2 * sizeof(Real) * i);
                const double imaginary = LoadLittleEndian<Real>(stored + 2 * sizeof(Real) * i + sizeof(Real));
                block[i] = std::sqrt(real * real + imaginary * imaginary);
            }
            std::memcpy(numbers + sizeof(double) * done, block.data(), sizeof(double) * size);
        }
    });
}

template void ReplaceByMagnitudes<float>(uint8_t*, size_t);
template void ReplaceByMagnitudes<double>(uint8_t*, size_t);

} // namespace Tav::Imaging::RawImage
