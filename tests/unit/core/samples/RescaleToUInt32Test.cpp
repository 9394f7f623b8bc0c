#include "core/samples/RescaleToUInt32.h"
#include "support/display/HeldImage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct Row
{
    const char* what;
    double minimum;
    double maximum;
    std::vector<double> samples;
    std::vector<uint32_t> quantised;
    uint32_t highest;
    bool force32Bit = false;
};

const Row rows[] = {
    {"fractions are cut off", 0, 1, {0, 0.25, 0.5, 0.75, 1}, {0, 16383, 32767, 49151, 65535}, 65535},
    {"samples count from the minimum", -2, 2, {-2, -1, 0, 2}, {0, 16383, 32767, 65535}, 65535},
    {"samples above the maximum are limited", 0, 1, {1.5, infinity}, {65535, 65535}, 65535},
    {"NaN is 0", 0, 1, {notANumber, 1}, {0, 65535}, 65535},
    {"32 bits are forced",
     0,
     1,
     {0, 0.25, 0.5, 1},
     {0, 1073741823, 2147483647, 4294967295},
     4294967295,
     true},
    {"a range of 65535 keeps whole numbers", 10, 65545, {10, 11, 65545}, {0, 1, 65535}, 65535},
    {"the fraction of the range does not count", 0, 65535.5, {0, 65535.5}, {0, 65535}, 65535},
    {"a range of 65536 takes 32 bits", 0, 65536, {0, 32768, 65536}, {0, 2147483647, 4294967295}, 4294967295},
    {"a range of 2^32 - 1 keeps whole numbers",
     0,
     4294967295.0,
     {0, 1, 4294967295.0},
     {0, 1, 4294967295},
     4294967295},
    {"a range of 2^32 has no low bits",
     0,
     4294967296.0,
     {0, 2147483648.0, 4294967296.0},
     {0, 32767, 65535},
     65535},
    {"an empty range: nothing times infinity is 0", 3, 3, {3, notANumber}, {0, 0}, 0},
    {"an empty range, forced to 32 bits", 3, 3, {3}, {0}, 0, true},
    {"a range too small to divide by", 0, 5e-324, {0, 5e-324}, {0, 65535}, 0},
    {"a range too small to divide by, forced to 32 bits", 0, 5e-324, {0, 5e-324}, {0, 4294967295}, 0, true},
    {"an infinite maximum", 1, infinity, {1, 3, infinity}, {0, 0, 0}, 0},
    {"an infinite minimum", -infinity, 1, {-infinity, 0, 1}, {0, 0, 0}, 0},
    {"an infinite range, forced to 32 bits",
     -infinity,
     infinity,
     {-infinity, 0, infinity},
     {0, 0, 0},
     0,
     true},
    {"a range beyond all numbers", -1e308, 1e308, {-1e308, 0, 1e308}, {0, 0, 0}, 0},
};

TEST(RescaleToUInt32, QuantisesTheRangeTo16Or32Bits)
{
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.what);
        const auto count = static_cast<uint32_t>(row.samples.size());
        HeldImage<double> source{count, 1, row.samples};
        source.minimum = row.minimum;
        source.maximum = row.maximum;

        const RescaledImage target{source, RescaleToUInt32{source, row.force32Bit}};
        EXPECT_EQ(target.width, count);
        EXPECT_EQ(target.height, 1U);
        EXPECT_EQ(target.minimum, 0U);
        EXPECT_EQ(target.maximum, row.highest);
        std::vector<uint32_t> quantised(count);
        target.Load(0, 1, quantised);
        EXPECT_EQ(quantised, row.quantised);
    }
}

} // namespace
