#include "support/display/FrameReader.h"
#include "support/display/TypeName.h"
#include "support/streams/TestStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

#include <malloc.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Tav::Imaging::RawImage;

namespace {

std::atomic<int64_t> bytesInUse{0};
std::atomic<int64_t> mostBytes{0};

void Count(int64_t bytes)
{
    const int64_t now = bytesInUse += bytes;
    if (now > mostBytes)
        mostBytes = now;
}

void* Allocated(size_t bytes)
{
    void* const block = std::malloc(bytes);
    if (block != nullptr)
        Count(static_cast<int64_t>(malloc_usable_size(block)));
    return block;
}

void Freed(void* block)
{
    if (block != nullptr)
        Count(-static_cast<int64_t>(malloc_usable_size(block)));
    std::free(block);
}

} // namespace

// This program counts its memory, of the heap and of the system.
void* operator new(size_t bytes)
{
    void* const block = Allocated(bytes);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}
void* operator new[](size_t bytes)
{
    return operator new(bytes);
}
void* operator new(size_t bytes, const std::nothrow_t&) noexcept
{
    return Allocated(bytes);
}
void* operator new[](size_t bytes, const std::nothrow_t&) noexcept
{
    return Allocated(bytes);
}
void operator delete(void* block) noexcept
{
    Freed(block);
}
void operator delete[](void* block) noexcept
{
    Freed(block);
}
void operator delete(void* block, size_t) noexcept
{
    Freed(block);
}
void operator delete[](void* block, size_t) noexcept
{
    Freed(block);
}

extern "C" void* mmap(void* address, size_t length, int protection, int flags, int file,
                      off_t offset) noexcept
{
    Count(static_cast<int64_t>(length));
    // NOLINTNEXTLINE(performance-no-int-to-ptr): so the system gives it
    return reinterpret_cast<void*>(syscall(SYS_mmap, address, length, protection, flags, file, offset));
}
extern "C" int munmap(void* address, size_t length) noexcept
{
    Count(-static_cast<int64_t>(length));
    return static_cast<int>(syscall(SYS_munmap, address, length));
}

namespace {

class PeakMemory : public testing::TestWithParam<uint32_t>
{};

// One block for the frame and its picture, and beside it what does not depend on the frame's size: histograms
// of 16-bit codes, and the addresses before and behind large pages, which are given back at once.
TEST_P(PeakMemory, IsThatOfTheStoredFrame)
{
    constexpr uint32_t edge = 2048;
    constexpr int64_t besides = 4 << 20;
    const auto type = static_cast<PixelType>(GetParam());
    const int64_t pictureBytes = type == PixelType::UInt4 ? int64_t{edge} * edge : 0;
    const int64_t storedBytes =
        type == PixelType::UInt4 ? int64_t{edge} * edge / 2 : int64_t{BytesPerPixel(type)} * edge * edge;
    FrameReader reader{StoredFrame{.pixelType = type, .width = edge, .height = edge}};
    TestStream stream{std::vector<uint8_t>(static_cast<size_t>(storedBytes))};
    for (size_t i = 0; i < stream.bytes.size(); ++i)
        stream.bytes[i] = static_cast<uint8_t>(i * 2654435761U >> 24);

    const int64_t before = bytesInUse;
    mostBytes = before;
    ASSERT_TRUE(reader.Read(&stream, stream.bytes.size(), readModeFrame, 0));
    EXPECT_GE(mostBytes - before, storedBytes);
    EXPECT_LE(mostBytes - before, storedBytes + pictureBytes + besides);
}

INSTANTIATE_TEST_SUITE_P(OfEveryType, PeakMemory, testing::Range(1U, 15U),
                         [](const auto& type) { return TypeName(static_cast<PixelType>(type.param)); });

} // namespace
