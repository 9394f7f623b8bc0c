#include "core/display/Histogram.h"
#include "support/ByteWriter.h"
#include "support/RandomSeed.h"

#include <gtest/gtest.h>

#include <random>

using namespace Tav::Imaging::RawImage;

namespace {

template <typename Code>
std::vector<uint32_t> Counted(size_t codes, const std::vector<Code>& words, Code turned = 0, Code lowest = 0)
{
    ByteWriter stored;
    for (const Code word : words)
        stored.Put(word);
    Histogram<Code> histogram{codes, words.size()};
    histogram.Add(stored.bytes.data(), words.size(), turned, lowest);
    const std::span<const uint32_t> counts = histogram.Sum();
    return {counts.begin(), counts.end()};
}

TEST(CodeHistogram, CountsDistancesOfTurnedWordsFromTheLowest)
{
    EXPECT_EQ(Counted<uint8_t>(4, {3, 0, 3, 3, 1}), (std::vector<uint32_t>{1, 1, 0, 3}));
    // The signed samples -2, 1, -2, 0 and 1.
    EXPECT_EQ(Counted<uint16_t>(4, {0xFFFE, 1, 0xFFFE, 0, 1}, 0x8000, 0x7FFE),
              (std::vector<uint32_t>{2, 0, 1, 2}));
}

TEST(CodeHistogram, CountsNothing)
{
    EXPECT_EQ(Counted<uint16_t>(2, {}), (std::vector<uint32_t>{0, 0}));
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

} // namespace
