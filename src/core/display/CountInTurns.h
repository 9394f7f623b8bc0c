#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Adds to `counts` how often each code occurs among codeAt(0) to codeAt(codeCount - 1). Neighbouring
/// codes are often equal: counting in turns in several tables spares the wait for the last count to be
/// stored.
template <size_t tables, typename CodeAt>
void CountInTurns(std::span<uint32_t> counts, size_t codeCount, const CodeAt& codeAt)
{
    size_t index = 0;
    if (codeCount < counts.size())
    {
        // So few codes are counted before the tables would be ready.
        for (; index < codeCount; ++index)
            ++counts[codeAt(index)];
        return;
    }
    std::vector<uint32_t> turns(tables * counts.size());
    for (; index + tables <= codeCount; index += tables)
    {
        for (size_t table = 0; table < tables; ++table)
            ++turns[table * counts.size() + codeAt(index + table)];
    }
    for (; index < codeCount; ++index)
        ++turns[codeAt(index)];

    for (size_t i = 0; i < turns.size(); ++i)
        counts[i % counts.size()] += turns[i];
}

} // namespace Tav::Imaging::RawImage
