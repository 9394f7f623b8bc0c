#include "core/samples/Vectorised.h"

#include <atomic>

namespace Tav::Imaging::RawImage {

namespace {

bool HasAvx2() noexcept
{
#ifdef __x86_64__
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

std::atomic<Vectors>& Chosen() noexcept
{
    static std::atomic<Vectors> vectors{HasAvx2() ? Vectors::Avx2 : Vectors::Baseline};
    return vectors;
}

} // namespace

Vectors VectorsInUse() noexcept
{
    return Chosen().load(std::memory_order_relaxed);
}

bool UseVectors(Vectors vectors) noexcept
{
    if (vectors == Vectors::Avx2 && !HasAvx2())
        return false;
    Chosen().store(vectors, std::memory_order_relaxed);
    return true;
}

} // namespace Tav::Imaging::RawImage
