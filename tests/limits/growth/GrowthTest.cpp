#include "limits/Limits.h"
#include "limits/growth/GrowthCases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <ostream>
#include <string>

namespace {

/// How much more a file with twice as many things may cost: searching in sorted trees makes it a little more.
constexpr double mostRatio = 2.2;

double Steps(const MeasuredOpen& open)
{
    return static_cast<double>(open.steps);
}

void ExpectLinear(const FileCost& smaller, const FileCost& larger)
{
    EXPECT_TRUE(larger.header.frameCount && larger.frame.frameCount);
    EXPECT_LE(Steps(larger.header) / Steps(smaller.header), mostRatio);
    EXPECT_LE(Steps(larger.frame) / Steps(smaller.frame), mostRatio);
}

/// The window on the header grows with the file, up to 4 MiB.
constexpr int64_t windowPerByte = 1;

class Growth : public testing::TestWithParam<GrowthCase>
{};

TEST_P(Growth, OfAFileMakesItsCostGrowAsMuch)
{
    const auto& [format, things, count, build, memoryPerByte] = GetParam();
    const std::array<Bytes, 3> files = {build(count), build(2 * count), build(4 * count)};
    std::array<FileCost, 3> costs = {ExpectWithinLimits(files[0], "smallest"),
                                     ExpectWithinLimits(files[1], "larger"),
                                     ExpectWithinLimits(files[2], "largest")};
    ExpectLinear(costs[0], costs[1]);
    ExpectLinear(costs[1], costs[2]);
    // A lattice file's header ends at 256 KiB, and the sandbox of the HDF5 library has a limit of its own.
    if (format == "Lattice" || format == "HDF5")
        return;
    const int64_t mostMemory =
        (memoryPerByte + windowPerByte) * static_cast<int64_t>(files[2].size() - files[0].size());
    EXPECT_LE(costs[2].header.memory - costs[0].header.memory, mostMemory);
    EXPECT_LE(costs[2].frame.memory - costs[0].frame.memory, mostMemory);
}

std::string NameOf(const testing::TestParamInfo<GrowthCase>& tested)
{
    std::string name = tested.param.format + " " + tested.param.things;
    std::ranges::replace(name, ' ', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Dm, Growth, testing::ValuesIn(DmGrowth()), NameOf);
INSTANTIATE_TEST_SUITE_P(Series, Growth, testing::ValuesIn(SeriesGrowth()), NameOf);
INSTANTIATE_TEST_SUITE_P(Lattice, Growth, testing::ValuesIn(LatticeGrowth()), NameOf);
INSTANTIATE_TEST_SUITE_P(Hdf, Growth, testing::ValuesIn(HdfGrowth()), NameOf);
INSTANTIATE_TEST_SUITE_P(Frames, Growth, testing::ValuesIn(FrameGrowth()), NameOf);

} // namespace

void PrintTo(const GrowthCase& growth, std::ostream* out)
{
    *out << growth.format << ", " << growth.things;
}
