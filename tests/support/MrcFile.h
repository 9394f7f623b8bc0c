#pragma once

#include "support/ByteWriter.h"

#include <cstdint>
#include <string>
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
    MrcFile& ExtendedHeader(std::string type, std::vector<uint8_t> content)
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

    MrcFile& Samples(std::vector<uint8_t> raw)
    {
        samples = std::move(raw);
        return *this;
    }

    [[nodiscard]] std::vector<uint8_t> Build() const
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
    std::vector<uint8_t> extended;
    std::vector<uint8_t> samples;
};
