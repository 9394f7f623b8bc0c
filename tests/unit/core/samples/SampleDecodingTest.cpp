#include "core/samples/SampleDecoding.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

using namespace Tav::Imaging::RawImage;

namespace {

TEST(DecodeHalf, ReadsNumbers)
{
    EXPECT_EQ(DecodeHalf(0x3C00), 1.0F);
    EXPECT_EQ(DecodeHalf(0xBC00), -1.0F);
    EXPECT_EQ(DecodeHalf(0x3C01), 1.0009765625F);
    EXPECT_EQ(DecodeHalf(0x3E00), 1.5F);
    EXPECT_EQ(DecodeHalf(0xC900), -10.0F);
    EXPECT_EQ(DecodeHalf(0x7BFF), 65504.0F);
    EXPECT_EQ(DecodeHalf(0xFBFF), -65504.0F);
    EXPECT_EQ(DecodeHalf(0x0400), 0.00006103515625F);
}

TEST(DecodeHalf, ScalesSubnormalNumbersBy2ToTheMinus15)
{
    EXPECT_EQ(DecodeHalf(0x0001), std::ldexp(1.0F, -25));
    EXPECT_EQ(DecodeHalf(0x8001), -std::ldexp(1.0F, -25));
    EXPECT_EQ(DecodeHalf(0x0200), std::ldexp(1.0F, -16));
    EXPECT_EQ(DecodeHalf(0x03FF), std::ldexp(1023.0F, -25));
}

TEST(DecodeHalf, KeepsTheSignOfZero)
{
    EXPECT_EQ(DecodeHalf(0x0000), 0.0F);
    EXPECT_FALSE(std::signbit(DecodeHalf(0x0000)));
    EXPECT_EQ(DecodeHalf(0x8000), 0.0F);
    EXPECT_TRUE(std::signbit(DecodeHalf(0x8000)));
}

TEST(DecodeHalf, TakesInfinitiesAndNaNOfEitherSignForInfinity)
{
    for (uint32_t fraction = 0; fraction < 0x400; ++fraction)
    {
        EXPECT_EQ(DecodeHalf(static_cast<uint16_t>(0x7C00 | fraction)),
                  std::numeric_limits<float>::infinity());
        EXPECT_EQ(DecodeHalf(static_cast<uint16_t>(0xFC00 | fraction)),
                  std::numeric_limits<float>::infinity());
    }
}

TEST(DecodeHalf, FollowsTheFormulaForEveryFiniteCode)
{
    for (uint32_t code = 0; code < 0x10000; ++code)
    {
        const int high = static_cast<int>(code >> 8);
        const int exponent = (high >> 2) & 31;
        if (exponent == 31)
            continue;
        const float fraction = static_cast<float>(code & 1023) * 0.0009765625F;
        const float size = std::ldexp(exponent != 0 ? fraction + 1 : fraction, exponent - 15);
        EXPECT_EQ(DecodeHalf(static_cast<uint16_t>(code)), (high & 0x80) != 0 ? -size : size) << code;
    }
}

} // namespace
