#include "core/display/Histogram.h"

#include "core/samples/SampleDecoding.h"

namespace Tav::Imaging::RawImage {

namespace {

constexpr size_t wordsAtOnce = sizeof(uint64_t) / sizeof(uint16_t);

/// As many as the near caches hold; one where the tables would take longer than the samples.
size_t TablesFor(size_t codes, size_t samples) noexcept
{
    if (samples < wordsAtOnce * codes)
        return 1;
    return codes <= 4096 ? wordsAtOnce : 2;
}

// Fewer bytes are counted sooner than the counts of all pairs are added up.
constexpr size_t fewBytes = 16384;

} // namespace

Histogram::Histogram(size_t codes, size_t samples)
    : codeCount(codes), tableCount(TablesFor(codes, samples)), counts(tableCount * codes)
{}

void Histogram::Add(const uint8_t* stored, size_t count, uint16_t turned, uint16_t lowest)
{
    // As many words as 64 bits hold are loaded at once. No word is below the lowest, so no difference borrows
    // from its neighbour.
    constexpr uint64_t each = 0x0001'0001'0001'0001;
    uint32_t* tables[wordsAtOnce];
    for (size_t word = 0; word < wordsAtOnce; ++word)
        tables[word] = counts.data() + word % tableCount * codeCount;
    size_t index = 0;
    for (; index + wordsAtOnce <= count; index += wordsAtOnce)
    {
        const auto words = LoadLittleEndian<uint64_t>(stored + index * sizeof(uint16_t));
        const uint64_t distances = (words ^ each * turned) - each * lowest;
        for (size_t word = 0; word < wordsAtOnce; ++word)
            ++tables[word][static_cast<uint16_t>(distances >> (16 * word))];
    }
    for (; index < count; ++index)
    {
        const auto word = LoadLittleEndian<uint16_t>(stored + index * sizeof(uint16_t));
        ++counts[static_cast<uint16_t>((word ^ turned) - lowest)];
    }
}

std::span<const uint32_t> Histogram::Sum()
{
    for (size_t table = 1; table < tableCount; ++table)
    {
        for (size_t code = 0; code < codeCount; ++code)
            counts[code] += counts[table * codeCount + code];
    }
    tableCount = 1;
    return std::span(counts).first(codeCount);
}

std::array<uint32_t, 256> CountBytes(const uint8_t* bytes, size_t count)
{
    std::array<uint32_t, 256> counts = {};
    size_t counted = 0;
    if (count >= fewBytes)
    {
        // Pairs of bytes are half as many.
        Histogram histogram{65536, count / 2};
        histogram.Add(bytes, count / 2);
        counted = count / 2 * 2;
        const std::span<const uint32_t> pairs = histogram.Sum();
        for (size_t pair = 0; pair < pairs.size(); ++pair)
        {
            counts[pair % 256] += pairs[pair];
            counts[pair / 256] += pairs[pair];
        }
    }
    for (; counted < count; ++counted)
        ++counts[bytes[counted]];
    return counts;
}

} // namespace Tav::Imaging::RawImage
