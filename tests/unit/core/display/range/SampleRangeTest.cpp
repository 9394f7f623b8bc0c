#include "core/display/SampleRange.h"
#include "support/display/FrameReader.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Tav::Imaging::RawImage;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

template <typename Number>
void ExpectWidened(Range<Number> start, std::initializer_list<Number> numbers, Range<Number> expected)
{
    const std::vector<uint8_t> stored = Stored(numbers);
    const Range<Number> range = Widened(start, stored.data(), numbers.size());
    EXPECT_EQ(range.low, expected.low);
    EXPECT_EQ(range.high, expected.high);
}

TEST(SampleRange, HoldsEveryNumber)
{
    ExpectWidened<uint16_t>({0xFFFF, 0}, {5, 3, 65535, 9}, {3, 65535});
    ExpectWidened<int32_t>({0, 0}, {-7, 3}, {-7, 3});
    ExpectWidened<uint32_t>({10, 20}, {12, 15}, {10, 20});
    ExpectWidened<float>({infinity, -infinity}, {1.5F, -2, 0}, {-2, 1.5F});
    ExpectWidened<double>({1, 1}, {-infinity, infinity}, {-infinity, infinity});
}

TEST(SampleRange, KeepsItsStartWithoutNumbers)
{
    ExpectWidened<float>({infinity, -infinity}, {}, {infinity, -infinity});
    ExpectWidened<float>({infinity, -infinity}, {notANumber, notANumber}, {infinity, -infinity});
}

TEST(SampleRange, FindsItsEndsAnywhereAndPassesOverNaN)
{
    for (size_t count = 2; count <= 70; ++count)
    {
        for (size_t place = 0; place < count; ++place)
        {
            std::vector<float> numbers(count, notANumber);
            numbers[place] = -3;
            numbers[(place + 1) % count] = 8;
            const auto* const stored = reinterpret_cast<const uint8_t*>(numbers.data());
            const Range<float> range = Widened<float>({infinity, -infinity}, stored, count);
            ASSERT_EQ(range.low, -3) << count << ", " << place;
            ASSERT_EQ(range.high, 8) << count << ", " << place;
        }
    }
}

} // namespace
