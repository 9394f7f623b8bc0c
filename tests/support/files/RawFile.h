#pragma once

#include "support/ByteWriter.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

/// Builds a RAW file: a header of 49 bytes, a gap, the samples of one image.
class RawFile
{
public:
    static constexpr size_t headerBytes = 49;

    enum SampleKind : uint32_t
    {
        Unsigned = 0,
        Signed = 1,
        FloatingPoint = 2,
        Colours = 3,
    };

    RawFile& Size(uint32_t columns, uint32_t rows)
    {
        width = columns;
        height = rows;
        return *this;
    }

    RawFile& Samples(uint32_t bits, uint32_t kind, Bytes raw)
    {
        bitsPerPixel = bits;
        sampleKind = kind;
        samples = std::move(raw);
        return *this;
    }

    /// What the header says of the bits of a pixel, whatever the samples have.
    RawFile& BitsPerPixel(uint32_t bits)
    {
        bitsPerPixel = bits;
        return *this;
    }

    /// Bytes between the header and the samples.
    RawFile& Gap(uint32_t bytes)
    {
        gap = bytes;
        return *this;
    }

    /// What the header says of the gap, whatever it is.
    RawFile& DataOffset(uint32_t word)
    {
        dataOffset = word;
        return *this;
    }

    /// Distances in bytes between samples that are neighbours in a row and in a column; 0 for packed ones.
    RawFile& Strides(uint32_t x, uint32_t y)
    {
        xStride = x;
        yStride = y;
        return *this;
    }

    [[nodiscard]] Bytes Build() const
    {
        using namespace std::string_view_literals;
        constexpr uint32_t unused = 0xCCCCCCCC;
        ByteWriter file;
        file.Text("TAV RawImage\0"sv).Put(unused);
        file.Put(width).Put(height).Put(unused);
        file.Put(bitsPerPixel).Put(sampleKind);
        file.Put(dataOffset.value_or(gap)).Put(xStride).Put(yStride);
        file.Put(Bytes(gap, 0xCC)).Put(samples);
        return std::move(file.bytes);
    }

private:
    uint32_t width = 1;
    uint32_t height = 1;
    uint32_t bitsPerPixel = 8;
    uint32_t sampleKind = Unsigned;
    uint32_t gap = 0;
    std::optional<uint32_t> dataOffset;
    uint32_t xStride = 0;
    uint32_t yStride = 0;
    Bytes samples;
};
