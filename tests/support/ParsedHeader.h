#pragma once

#include "support/files/LatticeFile.h"

#include "formats/lattice/UboHeaderParser.h"

#include <string>

/// The header of a lattice file and what the parser made of it.
struct ParsedHeader : Tav::Imaging::RawImage::UboHeaderParser
{
    explicit ParsedHeader(const std::string& text) : understood(Parse(text)) {}
    explicit ParsedHeader(const LatticeFile& file) : ParsedHeader(file.Header()) {}
    bool understood;
};
