#include "core/samples/FrameBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

using Tav::Imaging::RawImage::FrameBytes;

namespace {

// A block of the heap, pages of the usual size, and pages that are large where there are such.
constexpr size_t sizes[] = {0, 1, 4096, (1 << 20) - 1, 1 << 20, (4 << 20) - 1, (4 << 20) + 4097, 9'000'001};

TEST(FrameBytes, AreZero)
{
    for (const size_t size : sizes)
    {
        const FrameBytes bytes(size);
        EXPECT_EQ(bytes.size(), size);
        EXPECT_EQ(static_cast<size_t>(std::count(bytes.begin(), bytes.end(), 0)), size);
    }
}

TEST(FrameBytes, HoldWhatIsWrittenAndKeepTheBeginning)
{
    for (const size_t size : sizes)
    {
        FrameBytes bytes(size);
        for (size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<uint8_t>(i % 251);
        for (const size_t kept : {size, size / 2, size_t{0}})
        {
            bytes.Truncate(kept);
            ASSERT_EQ(bytes.size(), kept);
            for (size_t i = 0; i < kept; ++i)
                ASSERT_EQ(bytes[i], i % 251) << size << ", " << kept;
        }
        bytes.Truncate(1);
        EXPECT_EQ(bytes.size(), 0U);
    }
}

TEST(FrameBytes, GoFromOneToAnother)
{
    for (const size_t size : sizes)
    {
        FrameBytes bytes(size);
        const uint8_t* const data = bytes.data();
        FrameBytes moved(std::move(bytes));
        EXPECT_EQ(moved.data(), data);
        FrameBytes assigned(3);
        assigned = std::move(moved);
        EXPECT_EQ(assigned.data(), data);
        EXPECT_EQ(assigned.size(), size);
    }
}

TEST(FrameBytes, ThrowWhereThereIsNoMemory)
{
    EXPECT_THROW(FrameBytes(std::numeric_limits<size_t>::max() / 2), std::bad_alloc);
}

} // namespace
