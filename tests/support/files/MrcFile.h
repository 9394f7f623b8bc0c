#pragma once

#include "support/ByteWriter.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Builds an MRC file: main header, extended header, sections. Sections are given as raw bytes.
class MrcFile
{
public:
    using ByteOrder = ByteWriter::ByteOrder;

    MrcFile& Size(uint32_t columns, uint32_t rows, uint32_t sections)
    {
        nx = columns;
        ny = rows;
        nz = sections;
        return *this;
    }

    MrcFile& Mode(uint32_t number)
    {
        mode = number;
        return *this;
    }

    MrcFile& Order(ByteOrder numberOrder)
    {
        order = numberOrder;
        return *this;
    }

    /// The word that makes a file an MRC2014 file.
    MrcFile& Version(uint32_t number)
    {
        version = number;
        return *this;
    }

    /// The text block of ten labels, from its first byte on.
    MrcFile& Labels(std::string text)
    {
        labels = std::move(text);
        return *this;
    }

    /// Four characters that name the kind of extended header, and its bytes.
    MrcFile& ExtendedHeader(std::string type, Bytes content)
    {
        extendedType = std::move(type);
        extended = std::move(content);
        extendedBytes = static_cast<uint32_t>(extended.size());
        return *this;
    }

    /// The size that the header claims for the extended header, whatever it is.
    MrcFile& ClaimExtendedBytes(uint32_t count)
    {
        extendedBytes = count;
        return *this;
    }

    /// Where the extended header begins: 1024, or 8192 for writers that pad the main header.
    MrcFile& MainHeaderBytes(size_t count)
    {
        mainHeaderBytes = count;
        return *this;
    }

    MrcFile& Samples(Bytes raw)
    {
        samples = std::move(raw);
        return *this;
    }

    /// The same as numbers, in the byte order set before.
    template <typename Number>
    MrcFile& Numbers(std::initializer_list<Number> numbers)
    {
        ByteWriter writer{order};
        for (const Number number : numbers)
            writer.Put(number);
        return Samples(std::move(writer.bytes));
    }

    [[nodiscard]] Bytes Build() const
    {
        ByteWriter file{order};
        file.Put(nx).Put(ny).Put(nz).Put(mode);
        file.PadTo(92).Put(extendedBytes);
        file.PadTo(104).Text(extendedType);
        file.PadTo(108).Put(version);
        file.PadTo(208).Text("MAP ");
        file.PadTo(224).Text(labels);
        file.PadTo(mainHeaderBytes).Put(extended).Put(samples);
        return std::move(file.bytes);
    }

private:
    ByteOrder order = ByteOrder::LittleEndian;
    uint32_t nx = 1;
    uint32_t ny = 1;
    uint32_t nz = 1;
    uint32_t mode = 0;
    uint32_t version = 0;
    uint32_t extendedBytes = 0;
    std::string extendedType;
    std::string labels;
    size_t mainHeaderBytes = 1024;
    Bytes extended;
    Bytes samples;
};

/// The extended header in which an acquisition program tells its name (mask bits 0 and 1) and its version
/// (bit 2). Its numbers are little-endian in every file.
inline Bytes AcquisitionHeader(uint32_t mask, std::string_view application, std::string_view version)
{
    ByteWriter header;
    header.PadTo(8).Put(mask);
    header.PadTo(52).Text(application);
    header.PadTo(68).Text(version);
    header.PadTo(128);
    return std::move(header.bytes);
}
