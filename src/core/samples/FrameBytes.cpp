#include "core/samples/FrameBytes.h"

#include "platform/Pages.h"

#include <cstring>
#include <new>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

// Below this, the system gives no large pages, and the heap is quicker.
constexpr size_t largeBytes = size_t{4} << 20;

} // namespace

FrameBytes::FrameBytes(size_t byteCount) : count(byteCount)
{
    if (byteCount < largeBytes)
    {
        first = new uint8_t[byteCount]();
        return;
    }
    first = AllocatePages(byteCount);
    if (first == nullptr)
        throw std::bad_alloc();
    pageBytes = byteCount;
}

FrameBytes::FrameBytes(std::span<const uint8_t> bytes) : FrameBytes(bytes.size())
{
    if (!bytes.empty())
        std::memcpy(first, bytes.data(), bytes.size());
}

FrameBytes::FrameBytes(FrameBytes&& other) noexcept
    : first(std::exchange(other.first, nullptr)), count(std::exchange(other.count, 0)),
      pageBytes(std::exchange(other.pageBytes, 0))
{}

FrameBytes& FrameBytes::operator=(FrameBytes&& other) noexcept
{
    FrameBytes taken(std::move(other));
    std::swap(first, taken.first);
    std::swap(count, taken.count);
    std::swap(pageBytes, taken.pageBytes);
    return *this;
}

FrameBytes::~FrameBytes()
{
    if (pageBytes != 0)
        ReleasePages(first, pageBytes);
    else
        delete[] first;
}

void FrameBytes::Truncate(size_t byteCount) noexcept
{
    count = std::min(count, byteCount);
    if (pageBytes != 0)
        DecommitPages(first, pageBytes, count);
}

} // namespace Tav::Imaging::RawImage
