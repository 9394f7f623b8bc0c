#include "formats/HdfGuard.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

using namespace Tav::Imaging::RawImage;

// What the library calls.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {
void* LumoraHdf_malloc(size_t bytes);
void* LumoraHdf_calloc(size_t count, size_t bytes);
void* LumoraHdf_realloc(void* memory, size_t bytes);
void LumoraHdf_free(void* memory);
}
// NOLINTEND(readability-identifier-naming)

namespace {

constexpr size_t megabyte = size_t{1} << 20;

TEST(HdfGuard, AllowsAsMuchMemoryAsAFileOfItsSizeCanNeed)
{
    // 64 MiB, and four times the file's two.
    const std::vector<uint8_t> file(2 * megabyte);
    const HdfGuard guard{file};
    void* const whole = LumoraHdf_malloc(71 * megabyte);
    EXPECT_TRUE(whole);
    EXPECT_FALSE(LumoraHdf_malloc(2 * megabyte));
    EXPECT_FALSE(LumoraHdf_calloc(2, megabyte));
    EXPECT_FALSE(LumoraHdf_realloc(nullptr, 2 * megabyte));
    // What little it takes to end its work, the library gets, up to as much again.
    std::vector<void*> small;
    while (void* const block = LumoraHdf_malloc(4096))
        small.push_back(block);
    EXPECT_GE(small.size(), 70 * megabyte / 4096);
    EXPECT_LE(small.size(), 73 * megabyte / 4096);
    std::ranges::for_each(small, LumoraHdf_free);
    LumoraHdf_free(whole);

    void* const again = LumoraHdf_malloc(71 * megabyte);
    EXPECT_TRUE(again);
    LumoraHdf_free(again);
}

TEST(HdfGuard, RefusesProductsThatDoNotFit)
{
    EXPECT_FALSE(LumoraHdf_calloc(SIZE_MAX / 4, 5));
}

TEST(HdfGuard, GivesClearMemory)
{
    const auto isClear = [](const void* memory, size_t first, size_t end) {
        const auto* bytes = static_cast<const uint8_t*>(memory);
        return std::all_of(bytes + first, bytes + end, [](uint8_t byte) { return byte == 0; });
    };
    void* memory = LumoraHdf_malloc(1000);
    ASSERT_TRUE(memory);
    EXPECT_TRUE(isClear(memory, 0, 1000));
    *static_cast<uint8_t*>(memory) = 7;
    memory = LumoraHdf_realloc(memory, 100000);
    ASSERT_TRUE(memory);
    EXPECT_EQ(*static_cast<uint8_t*>(memory), 7);
    EXPECT_TRUE(isClear(memory, 1, 100000));
    LumoraHdf_free(memory);
}

TEST(HdfGuard, CountsWork)
{
    // 2 million steps, and 16 for each byte.
    const std::vector<uint8_t> file(1000);
    const HdfGuard guard{file};
    for (uint32_t step = 0; step < 2016000; ++step)
        ASSERT_TRUE(TakeHdfSteps()) << step;
    EXPECT_FALSE(TakeHdfSteps());
    EXPECT_FALSE(TakeHdfSteps());
}

TEST(HdfGuard, AllowsNoWorkAfterTheEndOfMemory)
{
    HdfReserve reserve;
    const HdfGuard guard{{}};
    EXPECT_FALSE(reserve.IsOpen());
    EXPECT_TRUE(TakeHdfSteps());
    reserve.Open();
    EXPECT_TRUE(reserve.IsOpen());
    EXPECT_FALSE(TakeHdfSteps());
    const HdfGuard nextGuard{{}};
    EXPECT_FALSE(TakeHdfSteps());
}

TEST(HdfGuard, LimitsNothingWhenItIsGone)
{
    {
        const HdfGuard guard{{}};
        while (TakeHdfSteps())
        {}
        EXPECT_FALSE(LumoraHdf_malloc(65 * megabyte));
    }
    EXPECT_TRUE(TakeHdfSteps());
    void* const memory = LumoraHdf_malloc(65 * megabyte);
    EXPECT_TRUE(memory);
    LumoraHdf_free(memory);
}

} // namespace
