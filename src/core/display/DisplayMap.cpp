#include "core/display/DisplayMap.h"

#include "core/display/DisplayScaling.h"
#include "core/samples/Image.h"
#include "core/samples/SampleDecoding.h"
#include "core/samples/Vectorised.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

uint8_t Product(uint32_t distance, float factor) noexcept
{
    const int level = static_cast<int>(static_cast<float>(static_cast<int>(distance)) * factor);
    return static_cast<uint8_t>(level < 255 ? level : 255);
}

bool GivesAll(float factor, const std::vector<uint8_t>& bytes)
{
    bool isEqual = true;
    Vectorised([=, size = bytes.size(), data = bytes.data(), result = &isEqual] {
        unsigned differences = 0;
        for (size_t distance = 0; distance < size; ++distance)
            differences |=
                static_cast<unsigned>(Product(static_cast<uint32_t>(distance), factor) ^ data[distance]);
        *result = differences == 0;
    });
    return isEqual;
}

/// A factor whose products with the distances are the bytes. It is looked for near 255 divided by the length
/// of the range, which is two less than the number of bytes; 0 where there is none.
float FactorOf(const std::vector<uint8_t>& bytes)
{
    if (bytes.size() < 3)
        return 0;
    // The steps were divided in double precision. A factor that is a little too large makes up for the
    // rounding of the products, and one that is a little too small gives steps that were rounded down.
    constexpr float towards[] = {1, 2, 3, -1, -2, 0};
    const float nearest = 255.0F / static_cast<float>(bytes.size() - 2);
    for (const float units : towards)
    {
        const float factor = nearest + nearest * units * std::numeric_limits<float>::epsilon();
        if (GivesAll(factor, bytes))
            return factor;
    }
    return 0;
}

/// Replaces 16-bit words, of which the table has the bytes. Four of them are loaded and four bytes written at
/// once.
void ReplaceByTable(const std::vector<uint8_t>& table, const uint8_t* stored, size_t count, uint8_t* target)
{
    const uint8_t* const bytes = table.data();
    size_t index = 0;
    for (; index + 4 <= count; index += 4)
    {
        const auto words = LoadLittleEndian<uint64_t>(stored + 2 * index);
        uint32_t replaced = 0;
        for (size_t word = 0; word < 4; ++word)
            replaced |= uint32_t{bytes[words >> (16 * word) & 0xFFFF]} << (8 * word);
        std::memcpy(target + index, &replaced, sizeof(replaced));
    }
    for (; index < count; ++index)
        target[index] = bytes[LoadLittleEndian<uint16_t>(stored + 2 * index)];
}

} // namespace

DisplayMap::DisplayMap(uint32_t firstSample, std::vector<uint8_t> displayBytes)
    : first(firstSample), bytes(std::move(displayBytes)), factor(FactorOf(bytes))
{}

DisplayMap DisplayMap::OfRange(uint32_t low, uint32_t high)
{
    const DisplayScale scale{low, high};
    // One sample more than the range: what lies above it is white, its end need not be.
    std::vector<uint8_t> bytes(size_t{high - low} + 2, 255);
    Vectorised([=, size = bytes.size(), data = bytes.data()] {
        for (size_t distance = 0; distance + 1 < size; ++distance)
            data[distance] = scale(low + static_cast<uint32_t>(distance));
    });
    return {low, std::move(bytes)};
}

std::vector<uint8_t> DisplayMap::WordTable(uint16_t turned, uint16_t lowest) const
{
    std::vector<uint8_t> table(65536);
    for (size_t word = 0; word < table.size(); ++word)
        table[word] = ByteOf(static_cast<uint16_t>((word ^ turned) - lowest));
    return table;
}

template <typename Word>
void DisplayMap::Replace(const uint8_t* stored, size_t count, uint8_t* target, Word turned, Word lowest) const
{
    // The words of the first sample and of the last one that has a byte of its own, as distances from the
    // lowest.
    constexpr size_t most = std::numeric_limits<Word>::max();
    const auto begin = static_cast<Word>(first);
    const auto end = static_cast<Word>(std::min(first + bytes.size() - 1, most));
    const auto replace = [=](const auto& byteOf) {
        // A block of its own, because the bytes may go where the words are.
        std::array<uint8_t, blockSamples> block;
        for (size_t done = 0; done < count; done += block.size())
        {
            const size_t size = std::min(block.size(), count - done);
            for (size_t i = 0; i < size; ++i)
            {
                const auto word = LoadLittleEndian<Word>(stored + (done + i) * sizeof(Word));
                const auto sample = static_cast<Word>((word ^ turned) - lowest);
                const Word limited = sample < begin ? begin : sample > end ? end : sample;
                block[i] = byteOf(static_cast<uint32_t>(limited - begin));
            }
            std::memcpy(target + done, block.data(), size);
        }
    };
    if (factor == 0 && sizeof(Word) == 2 && count > most)
        return ReplaceByTable(WordTable(static_cast<uint16_t>(turned), static_cast<uint16_t>(lowest)), stored,
                              count, target);
    if (factor != 0)
        Vectorised(
            [=, scale = factor] { replace([=](uint32_t distance) { return Product(distance, scale); }); });
    else
        replace([table = bytes.data()](uint32_t distance) { return table[distance]; });
}

template void DisplayMap::Replace(const uint8_t*, size_t, uint8_t*, uint8_t, uint8_t) const;
template void DisplayMap::Replace(const uint8_t*, size_t, uint8_t*, uint16_t, uint16_t) const;

} // namespace Tav::Imaging::RawImage
