#pragma once

#include "core/samples/SampleDecoding.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace Tav::Imaging::RawImage {

/// How often each code of 8 or 16 bits occurs. Neighbouring codes are often equal, and a processor that
/// counts the same code twice waits for the first count to be stored. So neighbours are counted in different
/// tables.
template <typename Code>
class Histogram
{
public:
    /// Counts codes from 0 to `codes` - 1, of a frame with `samples` samples.
    Histogram(size_t codes, size_t samples)
        : codeCount(codes), tableCount(TablesFor(codes, samples)), counts(tableCount * codes)
    {}

    /// Counts `count` stored words, each as its distance from the lowest one, which must be a code. In the
    /// words, the bits of `turned` are turned first.
    void Add(const uint8_t* stored, size_t count, Code turned = 0, Code lowest = 0)
    {
        // As many words as 64 bits hold are loaded at once. No word is below the lowest, so no difference
        // borrows from its neighbour.
        constexpr uint64_t each = std::numeric_limits<uint64_t>::max() / std::numeric_limits<Code>::max();
        uint32_t* tables[wordsAtOnce];
        for (size_t word = 0; word < wordsAtOnce; ++word)
            tables[word] = counts.data() + word % tableCount * codeCount;
        size_t index = 0;
        for (; index + wordsAtOnce <= count; index += wordsAtOnce)
        {
            const auto words = LoadLittleEndian<uint64_t>(stored + index * sizeof(Code));
            const uint64_t distances = (words ^ each * turned) - each * lowest;
            for (size_t word = 0; word < wordsAtOnce; ++word)
                ++tables[word][static_cast<Code>(distances >> (8 * sizeof(Code) * word))];
        }
        for (; index < count; ++index)
        {
            const auto word = LoadLittleEndian<Code>(stored + index * sizeof(Code));
            ++counts[static_cast<Code>((word ^ turned) - lowest)];
        }
    }

    /// The counts of all codes.
    [[nodiscard]] std::span<const uint32_t> Sum()
    {
        for (size_t table = 1; table < tableCount; ++table)
        {
            for (size_t code = 0; code < codeCount; ++code)
                counts[code] += counts[table * codeCount + code];
        }
        tableCount = 1;
        return std::span(counts).first(codeCount);
    }

private:
    static constexpr size_t wordsAtOnce = sizeof(uint64_t) / sizeof(Code);

    /// As many as the near caches hold; one where the tables would take longer than the samples.
    static size_t TablesFor(size_t codes, size_t samples) noexcept
    {
        if (samples < wordsAtOnce * codes)
            return 1;
        return codes <= 4096 ? wordsAtOnce : 2;
    }

    size_t codeCount;
    size_t tableCount;
    std::vector<uint32_t> counts;
};

} // namespace Tav::Imaging::RawImage
