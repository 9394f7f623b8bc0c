#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <vector>

inline double SecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Time that a copy of the same bytes takes, into memory that is already there.
inline double CopySeconds(const std::vector<uint8_t>& bytes)
{
    std::vector<uint8_t> target(bytes.size());
    double best = 1e9;
    for (int run = 0; run < 7; ++run)
    {
        const auto start = std::chrono::steady_clock::now();
        std::memcpy(target.data(), bytes.data(), bytes.size());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
        best = std::min(best, SecondsSince(start));
    }
    return best;
}

/// Runs one decode per iteration and reports its cost against the copy and per pixel.
template <typename Decode>
void RunDecode(benchmark::State& state, const std::vector<uint8_t>& raw, uint32_t edge, Decode decode)
{
    const double copySeconds = CopySeconds(raw);
    double best = 1e9;
    for (auto _ : state)
    {
        const auto start = std::chrono::steady_clock::now();
        if (!decode())
        {
            state.SkipWithError("the frame was refused");
            return;
        }
        best = std::min(best, SecondsSince(start));
    }
    state.counters["memcpy_ms"] = copySeconds * 1e3;
    state.counters["x_memcpy"] = best / copySeconds;
    state.counters["ns_per_pixel"] = best * 1e9 / (static_cast<double>(edge) * edge);
}
