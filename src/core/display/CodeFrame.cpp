#include "core/display/CodeFrame.h"

#include "core/display/DisplayScaling.h"
#include "core/display/DynamicRangeCalculator.h"
#include "core/display/InterleavedHistogram.h"
#include "core/samples/SampleDecoding.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

namespace Tav::Imaging::RawImage {

namespace {

constexpr uint32_t codeCount = 65536;
constexpr size_t codeBytes = sizeof(uint16_t);

} // namespace

CodeFrame::CodeFrame(const std::vector<uint8_t>& frameBytes, uint32_t frameWidth, uint32_t frameHeight,
                     Rank rankOfCode)
    : codes(frameBytes), width(frameWidth), height(frameHeight), rank(rankOfCode), counts(codeCount)
{
    CountInterleaved<2>(counts, width * height, [this](size_t index) {
        return LoadLittleEndian<uint16_t>(codes.data() + index * codeBytes);
    });
    lowest = codeCount - 1;
    for (uint32_t code = 0; code < codeCount; ++code)
    {
        if (counts[code] == 0)
            continue;
        const uint32_t codeRank = rank(static_cast<uint16_t>(code));
        lowest = std::min(lowest, codeRank);
        highest = std::max(highest, codeRank);
    }
}

CodeFrame::CodeFrame(const Image<double>& source, const RescaleToUInt32& rescale,
                     std::vector<uint8_t>& frameBytes)
    : codes(frameBytes), width(source.width), height(source.height), rank([](uint16_t code) { return code; }),
      highest(rescale.Highest()), counts(codeCount)
{
    std::array<uint16_t, blockSamples> quantised;
    ForEachBlock(source, 0, source.SampleCount(), [&](size_t first, std::span<const double> samples) {
        for (size_t i = 0; i < samples.size(); ++i)
            quantised[i] = static_cast<uint16_t>(static_cast<int32_t>(rescale(samples[i])));
        for (size_t i = 0; i < samples.size(); ++i)
            ++counts[quantised[i]];
        std::memcpy(frameBytes.data() + first * codeBytes, quantised.data(), samples.size() * codeBytes);
    });
}

std::vector<uint8_t> CodeFrame::DisplayTable() const
{
    // Codes that do not occur need neither a count nor a display byte.
    std::vector<uint16_t> present;
    for (uint32_t code = 0; code < codeCount; ++code)
    {
        if (counts[code] != 0)
            present.push_back(static_cast<uint16_t>(code));
    }

    const uint32_t range = highest - lowest;
    std::vector<uint32_t> distanceCounts(size_t{range} + 1);
    for (const uint16_t code : present)
    {
        const uint32_t distance = rank(code) - lowest;
        if (distance <= range)
            distanceCounts[distance] = counts[code];
    }
    DynamicRangeCalculator calculator{0, range};
    calculator.ComputeExactRange(distanceCounts, width * height, 0, range);

    const DisplayScale scale{calculator.low, calculator.high};
    std::vector<uint8_t> table(codeCount);
    for (const uint16_t code : present)
        table[code] = scale(rank(code) - lowest);
    return table;
}

void CodeFrame::ScaleToDisplayBytes(std::vector<uint8_t>& bytes, bool flip) const
{
    const std::vector<uint8_t> table = DisplayTable();
    bytes.resize(width * height);
    for (size_t row = 0; row < height; ++row)
    {
        const uint8_t* const source = codes.data() + (flip ? height - 1 - row : row) * width * codeBytes;
        uint8_t* const target = bytes.data() + row * width;
        for (size_t column = 0; column < width; ++column)
            target[column] = table[LoadLittleEndian<uint16_t>(source + column * codeBytes)];
    }
}

} // namespace Tav::Imaging::RawImage
