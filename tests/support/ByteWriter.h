#pragma once

#include "support/BytesAndLines.h"

#include "core/stream/ByteOrder.h"

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstdint>
#include <span>
#include <string_view>

/// Writes a test file field by field.
class ByteWriter
{
public:
    using ByteOrder = Tav::Imaging::RawImage::ByteOrder;

    explicit ByteWriter(ByteOrder numberOrder = ByteOrder::LittleEndian) : order(numberOrder) {}

    template <std::unsigned_integral Number>
    ByteWriter& Put(Number number)
    {
        for (size_t i = 0; i < sizeof(Number); ++i)
        {
            const size_t place = order == ByteOrder::LittleEndian ? i : sizeof(Number) - 1 - i;
            bytes.push_back(static_cast<uint8_t>(number >> (8 * place)));
        }
        return *this;
    }

    ByteWriter& Put(int16_t number) { return Put(static_cast<uint16_t>(number)); }
    ByteWriter& Put(int32_t number) { return Put(static_cast<uint32_t>(number)); }
    ByteWriter& Put(float number) { return Put(std::bit_cast<uint32_t>(number)); }
    ByteWriter& Put(double number) { return Put(std::bit_cast<uint64_t>(number)); }

    ByteWriter& Put(std::span<const uint8_t> run)
    {
        bytes.insert(bytes.end(), run.begin(), run.end());
        return *this;
    }

    ByteWriter& Text(std::string_view text)
    {
        for (const char character : text)
            bytes.push_back(static_cast<uint8_t>(character));
        return *this;
    }

    /// Zero bytes up to an absolute offset.
    ByteWriter& PadTo(size_t offset)
    {
        bytes.resize(std::max(bytes.size(), offset));
        return *this;
    }

    Bytes bytes;

private:
    ByteOrder order;
};
