#pragma once

#include "support/ByteWriter.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// Builds a lattice file: lines of text, of which "@1" is the last, then the samples, slice after slice. Each
/// line can be replaced by any text; one that is empty is left out.
class LatticeFile
{
public:
    /// The line that says which program wrote the file.
    LatticeFile& Magic(std::string line)
    {
        magic = std::move(line);
        return *this;
    }

    LatticeFile& Size(uint32_t x, uint32_t y, uint32_t z)
    {
        return Definition("define Lattice " + std::to_string(x) + " " + std::to_string(y) + " " +
                          std::to_string(z));
    }

    /// The line with the dimensions.
    LatticeFile& Definition(std::string line)
    {
        definition = std::move(line);
        return *this;
    }

    /// Lines between the dimensions and the type.
    LatticeFile& Block(std::string lines)
    {
        block = std::move(lines);
        return *this;
    }

    /// The word for the samples in the line with the type.
    LatticeFile& Type(const std::string& word) { return TypeLine("Lattice { " + word + " Data } @1"); }

    LatticeFile& TypeLine(std::string line)
    {
        type = std::move(line);
        return *this;
    }

    /// The line that says that "@1" and the data follow.
    LatticeFile& Announcement(std::string line)
    {
        announcement = std::move(line);
        return *this;
    }

    /// The line right before the data.
    LatticeFile& DataMark(std::string line)
    {
        dataMark = std::move(line);
        return *this;
    }

    LatticeFile& LineEnd(std::string characters)
    {
        lineEnd = std::move(characters);
        return *this;
    }

    LatticeFile& Samples(Bytes raw)
    {
        samples = std::move(raw);
        return *this;
    }

    [[nodiscard]] std::string Header() const
    {
        std::string text;
        for (const std::string& line : {magic, definition, block, type, announcement, dataMark})
            if (!line.empty())
                text += line + lineEnd;
        return text;
    }

    [[nodiscard]] Bytes Build() const
    {
        ByteWriter file;
        file.Text(Header()).Put(samples);
        return std::move(file.bytes);
    }

private:
    std::string magic = "# Vorna 1.0";
    std::string definition = "define Lattice 1 1 1";
    std::string block;
    std::string type = "Lattice { byte Data } @1";
    std::string announcement = "# Data section follows";
    std::string dataMark = "@1";
    std::string lineEnd = "\n";
    Bytes samples;
};
