#include "support/meters/MemoryMeter.h"

#include <array>
#include <atomic>
#include <cstddef>

#include <malloc.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<int64_t> bytesInUse{0};
std::atomic<int64_t> mostBytes{0};

void Count(int64_t bytes) noexcept
{
    const int64_t now = bytesInUse += bytes;
    if (now > mostBytes)
        mostBytes = now;
}

void* Counted(void* block) noexcept
{
    if (block != nullptr)
        Count(static_cast<int64_t>(malloc_usable_size(block)));
    return block;
}

/// Addresses that were reserved without memory, and how many of their bytes have become memory.
struct Reservation
{
    void* first;
    int64_t committed;
};

// As many as there are files open at the same time, and some more. The tests open files one after another.
std::array<Reservation, 8> reservations = {};

/// The reservation that begins at an address, or a free one for null.
Reservation* ReservationAt(const void* first) noexcept
{
    for (Reservation& reservation : reservations)
    {
        if (reservation.first == first)
            return &reservation;
    }
    return nullptr;
}

/// The reservation in which an address lies: of those that begin before it, the nearest one.
Reservation* ReservationOf(const void* address) noexcept
{
    Reservation* nearest = nullptr;
    for (Reservation& reservation : reservations)
    {
        if (reservation.first != nullptr && reservation.first <= address &&
            (nearest == nullptr || reservation.first > nearest->first))
            nearest = &reservation;
    }
    return nearest;
}

template <typename... Arguments>
int CallSystem(long number, Arguments... arguments) noexcept
{
    return static_cast<int>(syscall(number, arguments...));
}

} // namespace

// The heap's functions, by the C library's own names for them.
extern "C" {
void* __libc_malloc(size_t bytes);
void* __libc_calloc(size_t count, size_t bytes);
void* __libc_realloc(void* block, size_t bytes);
void __libc_free(void* block);
}

// These replace the C library's functions.

extern "C" void* malloc(size_t bytes) noexcept
{
    return Counted(__libc_malloc(bytes));
}
extern "C" void* calloc(size_t count, size_t bytes) noexcept
{
    return Counted(__libc_calloc(count, bytes));
}
extern "C" void* realloc(void* block, size_t bytes) noexcept
{
    // Both blocks exist while the bytes move.
    const auto before = static_cast<int64_t>(block != nullptr ? malloc_usable_size(block) : 0);
    void* const moved = Counted(__libc_realloc(block, bytes));
    if (moved != nullptr || bytes == 0)
        Count(-before);
    return moved;
}
extern "C" void free(void* block) noexcept
{
    if (block != nullptr)
        Count(-static_cast<int64_t>(malloc_usable_size(block)));
    __libc_free(block);
}

extern "C" void* mmap(void* address, size_t length, int protection, int flags, int file,
                      off_t offset) noexcept
{
    auto* const pages =
        reinterpret_cast<void*>(syscall(SYS_mmap, address, length, protection, flags, file, offset));
    if (pages == MAP_FAILED)
        return pages;
    if (protection != PROT_NONE)
        Count(static_cast<int64_t>(length));
    else if (Reservation* const reservation = ReservationAt(nullptr))
        *reservation = {pages, 0};
    return pages;
}
extern "C" int mprotect(void* address, size_t length, int protection) noexcept
{
    Reservation* const reservation = ReservationOf(address);
    if (reservation != nullptr && (protection & PROT_WRITE) != 0)
    {
        reservation->committed += static_cast<int64_t>(length);
        Count(static_cast<int64_t>(length));
    }
    return CallSystem(SYS_mprotect, address, length, protection);
}
extern "C" int munmap(void* address, size_t length) noexcept
{
    Reservation* const reservation = ReservationAt(address);
    Count(-(reservation != nullptr ? reservation->committed : static_cast<int64_t>(length)));
    if (reservation != nullptr)
        *reservation = {};
    return CallSystem(SYS_munmap, address, length);
}

MemoryMeter::MemoryMeter() noexcept : before(bytesInUse)
{
    mostBytes = before;
}

int64_t MemoryMeter::Peak() const noexcept
{
    return mostBytes - before;
}
