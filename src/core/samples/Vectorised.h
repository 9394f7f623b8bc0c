#pragma once

namespace Tav::Imaging::RawImage {

/// The vector registers that loops over whole frames are compiled for.
enum class Vectors
{
    /// Those that every 64-bit processor has.
    Baseline,
    Avx2,
};

/// The vectors in use: the wider of those that the processor and the operating system have, unless others
/// were chosen.
[[nodiscard]] Vectors VectorsInUse() noexcept;

/// Chooses the vectors for the whole process, so that a test can compare them. Returns false, and changes
/// nothing, where they are not to be had.
bool UseVectors(Vectors vectors) noexcept;

template <typename Loop>
[[gnu::flatten, gnu::noinline]] void RunWithBaselineVectors(Loop loop)
{
    loop();
}

#ifdef __x86_64__
template <typename Loop>
[[gnu::flatten, gnu::noinline, gnu::target("avx2")]] void RunWithAvx2(Loop loop)
{
    loop();
}
#endif

/// Runs a loop that is compiled once for each kind of vectors. What it gives does not depend on them. The
/// loop is a lambda that captures by value: what it captures by reference would be loaded again after each
/// store.
template <typename Loop>
void Vectorised(const Loop& loop)
{
#ifdef __x86_64__
    if (VectorsInUse() == Vectors::Avx2)
        return RunWithAvx2(loop);
#endif
    RunWithBaselineVectors(loop);
}

} // namespace Tav::Imaging::RawImage
