#pragma once

#include "core/samples/SampleDecoding.h"
#include "core/samples/Vectorised.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Tav::Imaging::RawImage {

/// The ends of a range of numbers.
template <typename Number>
struct Range
{
    Number low;
    Number high;
};

/// Widens a range until it holds `count` stored numbers; NaN changes nothing.
template <typename Number>
[[nodiscard]] Range<Number> Widened(Range<Number> range, const uint8_t* stored, size_t count)
{
    Vectorised([=, result = &range] {
        using Lanes [[gnu::vector_size(32)]] = Number;
        constexpr size_t lanes = sizeof(Lanes) / sizeof(Number);
        // Two extremes of each kind keep the loop from waiting for the last comparison.
        Lanes lows[2] = {range.low - Lanes{}, range.low - Lanes{}};
        Lanes highs[2] = {range.high - Lanes{}, range.high - Lanes{}};
        const auto include = [&](size_t half, const Lanes& next) {
            lows[half] = next < lows[half] ? next : lows[half];
            highs[half] = next > highs[half] ? next : highs[half];
        };
        size_t index = 0;
        for (; index + 2 * lanes <= count; index += 2 * lanes)
        {
            for (size_t half = 0; half < 2; ++half)
            {
                Lanes next;
                std::memcpy(&next, stored + (index + half * lanes) * sizeof(Number), sizeof(next));
                include(half, next);
            }
        }
        for (; index < count; ++index)
            include(0, LoadLittleEndian<Number>(stored + index * sizeof(Number)) - Lanes{});
        for (size_t lane = 0; lane < 2 * lanes; ++lane)
        {
            const Number low = lows[lane / lanes][lane % lanes];
            const Number high = highs[lane / lanes][lane % lanes];
            result->low = low < result->low ? low : result->low;
            result->high = high > result->high ? high : result->high;
        }
    });
    return range;
}

} // namespace Tav::Imaging::RawImage
