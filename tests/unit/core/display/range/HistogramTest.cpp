#include "core/display/Histogram.h"
#include "support/ByteWriter.h"
#include "support/RandomSeed.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

using namespace Tav::Imaging::RawImage;

namespace {

std::vector<uint32_t> Counted(size_t codes, const std::vector<uint16_t>& words, uint16_t turned = 0,
                              uint16_t lowest = 0)
{
    ByteWriter stored;
    for (const uint16_t word : words)
        stored.Put(word);
    Histogram histogram{codes, words.size()};
    histogram.Add(stored.bytes.data(), words.size(), turned, lowest);
    const std::span<const uint32_t> counts = histogram.Sum();
    return {counts.begin(), counts.end()};
}

TEST(CodeHistogram, CountsDistancesOfTurnedWordsFromTheLowest)
{
    EXPECT_EQ(Counted(4, {3, 0, 3, 3, 1}), (std::vector<uint32_t>{1, 1, 0, 3}));
    // The signed samples -2, 1, -2, 0 and 1.
    EXPECT_EQ(Counted(4, {0xFFFE, 1, 0xFFFE, 0, 1}, 0x8000, 0x7FFE), (std::vector<uint32_t>{2, 0, 1, 2}));
}

TEST(CodeHistogram, CountsNothing)
{
    EXPECT_EQ(Counted(2, {}), (std::vector<uint32_t>{0, 0}));
}

// Few codes are counted in many tables, many codes in few, and few samples in one.
TEST(CodeHistogram, CountsAnyNumberOfCodesAndSamples)
{
    std::mt19937 random{RandomSeed()};
    for (const size_t codes : {1U, 2U, 256U, 4096U, 4097U, 65536U})
    {
        for (const size_t samples : {1U, 3U, 4U, 5U, 1000U, 17000U, 300001U})
        {
            std::vector<uint16_t> words(samples);
            std::vector<uint32_t> expected(codes);
            for (uint16_t& word : words)
            {
                word = static_cast<uint16_t>(random() % codes);
                ++expected[word];
            }
            ASSERT_EQ(Counted(codes, words), expected) << codes << ", " << samples;
        }
    }
}

TEST(ByteHistogram, CountsAnyNumberOfBytes)
{
    std::mt19937 random{RandomSeed()};
    for (const size_t size : {0U, 1U, 2U, 3U, 16383U, 16384U, 16385U, 300001U})
    {
        std::vector<uint8_t> bytes(size);
        std::array<uint32_t, 256> expected = {};
        for (uint8_t& byte : bytes)
        {
            byte = static_cast<uint8_t>(random());
            ++expected[byte];
        }
        ASSERT_EQ(CountBytes(bytes.data(), size), expected) << size;
    }
}

} // namespace
