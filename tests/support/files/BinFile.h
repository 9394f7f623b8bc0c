#pragma once

#include "support/ByteWriter.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

/// Builds a BIN file: the type of the samples, the size of the image, perhaps the length of the header, and
/// the samples.
class BinFile
{
public:
    static constexpr size_t shortHeaderBytes = 10;

    BinFile& Size(uint32_t columns, uint32_t rows)
    {
        width = columns;
        height = rows;
        return *this;
    }

    BinFile& Samples(uint16_t type, Bytes raw)
    {
        typeCode = type;
        samples = std::move(raw);
        return *this;
    }

    /// The layout in which the header tells its own length, and is padded to it.
    BinFile& HeaderLength(uint32_t bytes)
    {
        headerLength = bytes;
        return *this;
    }

    [[nodiscard]] Bytes Build() const
    {
        ByteWriter file;
        file.Put(typeCode).Put(width).Put(height);
        if (headerLength)
        {
            file.Put(*headerLength);
            while (file.bytes.size() < *headerLength)
                file.Put(uint8_t{0xCC});
        }
        file.Put(samples);
        return std::move(file.bytes);
    }

private:
    uint16_t typeCode = 1;
    uint32_t width = 1;
    uint32_t height = 1;
    std::optional<uint32_t> headerLength;
    Bytes samples;
};
