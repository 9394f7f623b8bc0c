#include "formats/HdfAccess.h"
#include "support/DiagnosticLines.h"
#include "support/SparseStream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <vector>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;

namespace {

constexpr size_t largestBlock = size_t{1} << 30;

} // namespace

// In this program there is no memory for a block of more than 1 GiB.
void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    return size <= largestBlock ? std::malloc(size) : nullptr;
}

// Both are replaced: the sanitizer's own would not ask the other, and what it gives must not be freed below.
void* operator new(size_t size)
{
    void* const block = operator new(size, std::nothrow);
    if (!block)
        throw std::bad_alloc();
    return block;
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, size_t) noexcept
{
    std::free(block);
}

namespace {

TEST(HdfMemory, MayNotSufficeForTheLargestFile)
{
    constexpr uint64_t size = 0xFFFFFFFF;
    SparseStream stream{size, {}, 0, {}};
    std::vector<uint8_t> image;
    DiagnosticLines diagnostics;
    EXPECT_EQ(OpenHdfFileImage(&stream, size, image), -1);
    EXPECT_THAT(diagnostics.Take(), ElementsAre("[Lumora] HDF: Could not allocated enough memory"));
    EXPECT_EQ(stream.readCalls, 0U);
}

} // namespace
