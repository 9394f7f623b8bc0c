// The functions that the C code of the HDF5 module calls for its memory, its table of functions and its
// traps. A trap is a C++ exception, which passes through that code to the caller of the sandbox.

#include "formats/hdf/sandbox/HdfSandbox.h"
#include "platform/Pages.h"

#include <wasm-rt.h>

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <new>

using Tav::Imaging::RawImage::HdfTrap;

namespace {

constexpr size_t pageBytes = 0x10000;

} // namespace

// wasm2c chooses these names.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

void wasm_rt_trap(wasm_rt_trap_t)
{
    throw HdfTrap{};
}

void wasm_rt_trap_out_of_bounds()
{
    throw HdfTrap{};
}

void wasm_rt_trap_steps()
{
    throw HdfTrap{};
}

void wasm_rt_trap_stack()
{
    throw HdfTrap{};
}

/// A hash of a function's signature. cmake/hdf5/split_module.py has checked that no two signatures in the
/// module have the same hash.
uint32_t wasm_rt_register_func_type(uint32_t params, uint32_t results, ...)
{
    uint32_t sum = 2166136261U;
    const auto add = [&sum](uint32_t value) { sum = (sum ^ (value + 1)) * 16777619U; };
    va_list kinds;
    va_start(kinds, results);
    add(params);
    for (uint32_t i = 0; i < params + results; ++i)
        add(static_cast<uint32_t>(va_arg(kinds, int)));
    va_end(kinds);
    return sum;
}

/// Reserves the addresses once, so that the memory never moves, and commits memory as it grows. The caller
/// has set the limit, `max_pages`.
void wasm_rt_allocate_memory(wasm_rt_memory_t* memory, uint32_t initialPages, uint32_t maxPages)
{
    const uint32_t pages = std::min(maxPages, memory->max_pages);
    memory->data = initialPages > pages ? nullptr : ReservePages(pages * pageBytes);
    if (!memory->data)
        throw std::bad_alloc();
    memory->reserved_pages = pages;
    memory->max_pages = pages;
    if (!CommitPages(memory->data, initialPages * pageBytes))
        throw std::bad_alloc();
    memory->pages = initialPages;
    memory->size = initialPages * pageBytes;
}

/// If the module reaches its limit, it gets no more memory and continues. If the host has no memory, the host
/// gets an exception.
uint32_t wasm_rt_grow_memory(wasm_rt_memory_t* memory, uint32_t pages)
{
    const uint32_t before = memory->pages;
    if (pages > memory->max_pages - before)
        return UINT32_MAX;
    if (!CommitPages(memory->data + before * pageBytes, pages * pageBytes))
        throw std::bad_alloc();
    memory->pages += pages;
    memory->size = memory->pages * pageBytes;
    return before;
}

void wasm_rt_free_memory(wasm_rt_memory_t* memory)
{
    if (memory->data)
        ReleasePages(memory->data, memory->reserved_pages * pageBytes);
    memory->data = nullptr;
}

void wasm_rt_allocate_funcref_table(wasm_rt_funcref_table_t* table, uint32_t elements, uint32_t maxElements)
{
    table->data = static_cast<wasm_rt_funcref_t*>(std::calloc(elements, sizeof(wasm_rt_funcref_t)));
    if (!table->data)
        throw std::bad_alloc();
    table->size = elements;
    table->max_size = maxElements;
}

void wasm_rt_free_funcref_table(wasm_rt_funcref_table_t* table)
{
    std::free(table->data);
    table->data = nullptr;
}

} // extern "C"
// NOLINTEND(readability-identifier-naming)
