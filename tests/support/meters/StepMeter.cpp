#include "support/meters/StepMeter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

// The library's module, as translated by wasm2c.
#include <hdf5_module.h>

namespace Tav::Imaging::RawImage {
class HdfSandbox;
}

namespace {

// The measured code runs on one thread at a time.
uint64_t steps = 0;

constexpr size_t bytesPerStep = 16;

void CountBytes(size_t bytes) noexcept
{
    steps += 1 + bytes / bytesPerStep;
}

} // namespace

// These replace functions of the compiler's runtime and of the C library.

extern "C" void __sanitizer_cov_trace_pc()
{
    ++steps;
}

extern "C" void* memcpy(void* target, const void* source, size_t bytes) noexcept
{
    CountBytes(bytes);
    void* const begin = target;
    asm volatile("rep movsb" : "+D"(target), "+S"(source), "+c"(bytes) : : "memory");
    return begin;
}

extern "C" void* memmove(void* target, const void* source, size_t bytes) noexcept
{
    auto* const to = static_cast<uint8_t*>(target);
    const auto* const from = static_cast<const uint8_t*>(source);
    if (to <= from || to >= from + bytes)
        return memcpy(target, source, bytes);
    CountBytes(bytes);
    for (size_t i = bytes; i-- > 0;)
        to[i] = from[i];
    return target;
}

extern "C" void* memset(void* target, int value, size_t bytes) noexcept
{
    CountBytes(bytes);
    void* const begin = target;
    asm volatile("rep stosb" : "+D"(target), "+c"(bytes) : "a"(value) : "memory");
    return begin;
}

extern "C" int memcmp(const void* one, const void* other, size_t bytes) noexcept
{
    const auto* const left = static_cast<const uint8_t*>(one);
    const auto* const right = static_cast<const uint8_t*>(other);
    size_t i = 0;
    while (i < bytes && left[i] == right[i])
        ++i;
    CountBytes(i);
    return i < bytes ? left[i] - right[i] : 0;
}

// The C++ headers declare memchr twice, so it cannot be defined under its own name.
extern "C" void* CountedSearch(const void* text, int value, size_t bytes) noexcept __asm__("memchr");
extern "C" void* CountedSearch(const void* text, int value, size_t bytes) noexcept
{
    const auto* const characters = static_cast<const uint8_t*>(text);
    size_t i = 0;
    while (i < bytes && characters[i] != static_cast<uint8_t>(value))
        ++i;
    CountBytes(i);
    return i < bytes ? const_cast<uint8_t*>(characters + i) : nullptr;
}

// The linker puts these before the functions of the sandbox.
extern "C" {
void __real_Z_hdf5_instantiate(Z_hdf5_instance_t* instance);
void __wrap_Z_hdf5_instantiate(Z_hdf5_instance_t* instance);
void __real_Z_hdf5_free(Z_hdf5_instance_t* instance);
void __wrap_Z_hdf5_free(Z_hdf5_instance_t* instance);
void __real__ZN3Tav7Imaging8RawImage10HdfSandbox8AddStepsEl(Tav::Imaging::RawImage::HdfSandbox* sandbox,
                                                            int64_t count);
void __wrap__ZN3Tav7Imaging8RawImage10HdfSandbox8AddStepsEl(Tav::Imaging::RawImage::HdfSandbox* sandbox,
                                                            int64_t count);
}

// A budget counts when it is given, and what is left of it is taken back.
void __wrap_Z_hdf5_instantiate(Z_hdf5_instance_t* instance)
{
    steps += static_cast<uint64_t>(instance->w2c_memory.steps);
    __real_Z_hdf5_instantiate(instance);
}

void __wrap__ZN3Tav7Imaging8RawImage10HdfSandbox8AddStepsEl(Tav::Imaging::RawImage::HdfSandbox* sandbox,
                                                            int64_t count)
{
    // Less than zero is work that is done.
    steps += static_cast<uint64_t>(std::max<int64_t>(count, 0));
    __real__ZN3Tav7Imaging8RawImage10HdfSandbox8AddStepsEl(sandbox, count);
}

void __wrap_Z_hdf5_free(Z_hdf5_instance_t* instance)
{
    steps -= static_cast<uint64_t>(instance->w2c_memory.steps);
    __real_Z_hdf5_free(instance);
}

StepMeter::StepMeter() noexcept : before(steps) {}

uint64_t StepMeter::Steps() const noexcept
{
    return steps - before;
}
