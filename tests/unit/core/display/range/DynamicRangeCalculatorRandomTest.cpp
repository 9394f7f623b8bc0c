#include "core/display/DynamicRangeCalculator.h"
#include "support/RandomSeed.h"
#include "support/display/HeldImage.h"
#include "support/display/ReferenceRange.h"
#include "support/streams/DiagnosticLines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

/// Makes frames of a few clusters of samples, whose sizes decide which threshold cuts them.
class FrameMaker
{
public:
    explicit FrameMaker(uint32_t seed) : random(seed) {}

    uint32_t Below(uint64_t count)
    {
        return static_cast<uint32_t>(std::uniform_int_distribution<uint64_t>{0, count - 1}(random));
    }

    /// The samples begin at a random value and reach up to 2^reachBits - 1 above it.
    SampledFrame Next(uint32_t reachBits)
    {
        const uint64_t reach = uint64_t{1} << reachBits;
        const auto start = static_cast<uint32_t>(Below((uint64_t{1} << 32) - reach + 1));
        SampledFrame frame;
        const uint32_t clusters = 1 + Below(6);
        for (uint32_t cluster = 0; cluster < clusters; ++cluster)
        {
            const uint64_t width = uint64_t{1} << Below(reachBits + 1);
            const uint64_t offset = Below(reach - width + 1);
            const uint32_t count = 1 + Below(uint64_t{1} << Below(13));
            for (uint32_t i = 0; i < count; ++i)
                frame.samples.push_back(static_cast<uint32_t>(start + offset + Below(width)));
        }
        std::shuffle(frame.samples.begin(), frame.samples.end(), random);
        frame.width = static_cast<uint32_t>(frame.samples.size());
        frame.height = 1;
        frame.minimum = *std::min_element(frame.samples.begin(), frame.samples.end());
        frame.maximum = *std::max_element(frame.samples.begin(), frame.samples.end());
        return frame;
    }

private:
    std::mt19937_64 random;
};

using Pass = void (DynamicRangeCalculator::*)(const Image<unsigned int>&);

void ExpectRange(Pass pass, const SampledFrame& frame, uint32_t low, uint32_t high,
                 const ReferenceRange& expected)
{
    SCOPED_TRACE(testing::Message() << frame.width << " samples from " << frame.minimum << " to "
                                    << frame.maximum << ", starting with " << low << " to " << high);
    const HeldImage<unsigned int> image{frame.width, frame.height, frame.samples, frame.minimum,
                                        frame.maximum};
    DynamicRangeCalculator calculator{low, high};
    DiagnosticLines diagnostics;
    (calculator.*pass)(image);
    EXPECT_EQ(calculator.low, expected.low);
    EXPECT_EQ(calculator.high, expected.high);
    EXPECT_EQ(diagnostics.Take(), expected.lines);
}

TEST(RandomDynamicRange, IsThatOfTheReference)
{
    FrameMaker maker{RandomSeed()};
    for (int i = 0; i < 300 && !HasFailure(); ++i)
    {
        const SampledFrame frame = maker.Next(maker.Below(33));
        ExpectRange(&DynamicRangeCalculator::ComputeRange, frame, frame.minimum, frame.maximum,
                    ReferenceRangeOf(frame));
    }
}

TEST(RandomDynamicRange, OfTheExactPassIsThatOfTheReferenceFromAnyStart)
{
    FrameMaker maker{RandomSeed()};
    for (int i = 0; i < 300 && !HasFailure(); ++i)
    {
        const SampledFrame frame = maker.Next(maker.Below(20));
        // Both ends wrap when they leave the 32 bits.
        const uint32_t low = frame.minimum + maker.Below(1000) - 500;
        const uint32_t high = low + maker.Below(262144);
        ExpectRange(&DynamicRangeCalculator::ComputeExactRange, frame, low, high,
                    ReferenceExactRange(frame, low, high));
    }
}

TEST(RandomDynamicRange, OfTheCoarsePassIsThatOfTheReferenceForAnyWidth)
{
    FrameMaker maker{RandomSeed()};
    for (int i = 0; i < 300 && !HasFailure(); ++i)
    {
        const SampledFrame frame = maker.Next(maker.Below(33));
        ExpectRange(&DynamicRangeCalculator::ComputeCoarseRange, frame, frame.minimum, frame.maximum,
                    ReferenceCoarseRange(frame, frame.minimum, frame.maximum));
    }
}

} // namespace
