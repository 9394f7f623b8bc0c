#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Adds to `counts` how often each code occurs among codeAt(0) to codeAt(codeCount - 1). Neighbouring codes
/// are often equal, and a processor that counts the same code twice waits until the first count is stored. So
/// neighbours are counted in different tables, which are added at the end.
template <size_t tables, typename CodeAt>
void CountInterleaved(std::span<uint32_t> counts, size_t codeCount, const CodeAt& codeAt)
{
    size_t index = 0;
    if (codeCount < counts.size())
    {
        // Counting so few codes takes less time than making the tables.
        for (; index < codeCount; ++index)
            ++counts[codeAt(index)];
        return;
    }
    std::vector<uint32_t> partial(tables * counts.size());
    for (; index + tables <= codeCount; index += tables)
    {
        for (size_t table = 0; table < tables; ++table)
            ++partial[table * counts.size() + codeAt(index + table)];
    }
    for (; index < codeCount; ++index)
        ++partial[codeAt(index)];

    for (size_t i = 0; i < partial.size(); ++i)
        counts[i % counts.size()] += partial[i];
}

} // namespace Tav::Imaging::RawImage
