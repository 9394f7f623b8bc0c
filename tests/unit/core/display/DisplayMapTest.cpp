#include "core/display/DisplayMap.h"
#include "core/display/DisplayScaling.h"
#include "support/ByteWriter.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Tav::Imaging::RawImage;

namespace {

/// The display bytes of words that are stored in little-endian order.
template <typename Word>
std::vector<uint8_t> Replaced(const DisplayMap& map, const std::vector<Word>& words, Word turned = 0,
                              Word lowest = 0)
{
    ByteWriter stored;
    for (const Word word : words)
        stored.Put(word);
    std::vector<uint8_t> bytes(words.size());
    map.Replace(stored.bytes.data(), words.size(), bytes.data(), turned, lowest);
    return bytes;
}

TEST(DisplayMap, GivesTheFirstByteBelowItsSamplesAndTheLastOneAbove)
{
    const DisplayMap map{10, {7, 100, 50, 200}};
    EXPECT_EQ(Replaced<uint8_t>(map, {0, 9, 10, 11, 12, 13, 14, 255}),
              (std::vector<uint8_t>{7, 7, 7, 100, 50, 200, 200, 200}));
    EXPECT_EQ(Replaced<uint16_t>(map, {0, 9, 10, 11, 12, 13, 14, 65535}),
              (std::vector<uint8_t>{7, 7, 7, 100, 50, 200, 200, 200}));
    EXPECT_EQ(map.ByteOf(9), 7);
    EXPECT_EQ(map.ByteOf(12), 50);
    EXPECT_EQ(map.ByteOf(UINT32_MAX), 200);
}

TEST(DisplayMap, TakesSamplesAsDistancesOfTurnedWords)
{
    const DisplayMap map{0, {7, 100, 50, 200}};
    // The signed samples -2 to 1, of which -2 is the lowest.
    EXPECT_EQ(Replaced<uint16_t>(map, {0xFFFE, 0xFFFF, 0x0000, 0x0001}, 0x8000, 0x7FFE),
              (std::vector<uint8_t>{7, 100, 50, 200}));
}

TEST(DisplayMap, HasNothingBetweenBlackAndWhiteInAnEmptyRange)
{
    EXPECT_EQ(Replaced<uint16_t>(DisplayMap::OfRange(5, 5), {4, 5, 6}), (std::vector<uint8_t>{0, 0, 255}));
    EXPECT_EQ(Replaced<uint16_t>(DisplayMap::OfRange(65535, 65535), {0, 65535}),
              (std::vector<uint8_t>{0, 0}));
}

TEST(DisplayMap, GivesEverySampleTheByteOfItsScale)
{
    ByteWriter words;
    for (uint32_t word = 0; word < 65536; ++word)
        words.Put(static_cast<uint16_t>(word));
    // Narrow ranges, those of whole steps, and others.
    for (uint32_t range = 1; range <= 65535; range += range < 300 ? 1 : 1020 - range % 7)
    {
        const uint32_t low = (65535 - range) / 2;
        const DisplayScale scale{low, low + range};
        std::vector<uint8_t> bytes(65536);
        DisplayMap::OfRange(low, low + range)
            .Replace<uint16_t>(words.bytes.data(), bytes.size(), bytes.data());
        for (uint32_t word = 0; word < 65536; ++word)
            ASSERT_EQ(bytes[word], scale(word)) << word << " in " << range;
    }
}

TEST(DisplayMap, ReplacesMoreWordsThanThereAreCodes)
{
    // No factor gives these bytes.
    std::vector<uint8_t> bytes(65536);
    std::vector<uint16_t> words(3 * 65536 + 1);
    for (uint32_t i = 0; i < words.size(); ++i)
    {
        bytes[i % 65536] = static_cast<uint8_t>(i % 65536 * 97 >> 5);
        words[i] = static_cast<uint16_t>(i * 40503);
    }
    std::vector<uint8_t> expected(words.size());
    std::ranges::transform(words, expected.begin(), [&](uint16_t word) { return bytes[word]; });
    EXPECT_EQ(Replaced(DisplayMap{0, bytes}, words), expected);
}

} // namespace
