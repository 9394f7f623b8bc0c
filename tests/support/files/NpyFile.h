#pragma once

#include "support/ByteWriter.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Builds an array file: magic, version, header length, the text of a dictionary that spaces fill up to the
/// header length, array data. Unless told otherwise the data begin where readers stop looking at the header.
class NpyFile
{
public:
    /// The start of every file; any six bytes.
    NpyFile& Magic(std::string bytes)
    {
        magic = std::move(bytes);
        return *this;
    }

    NpyFile& Version(uint8_t major, uint8_t minor)
    {
        majorVersion = major;
        minorVersion = minor;
        return *this;
    }

    /// The element type in the dictionary, such as <u2.
    NpyFile& Descr(std::string code)
    {
        descr = std::move(code);
        return *this;
    }

    /// The shape in the dictionary, such as (4, 3).
    NpyFile& Shape(std::string tuple)
    {
        shape = std::move(tuple);
        return *this;
    }

    /// Any text in place of the dictionary.
    NpyFile& Dictionary(std::string text)
    {
        dictionary = std::move(text);
        return *this;
    }

    /// The length that the file states. Text beyond it stays, and precedes the data.
    NpyFile& HeaderLength(uint16_t bytes)
    {
        headerLength = bytes;
        return *this;
    }

    NpyFile& Samples(Bytes raw)
    {
        samples = std::move(raw);
        return *this;
    }

    [[nodiscard]] Bytes Build() const
    {
        std::string text = dictionary.value_or("{'descr': '" + descr +
                                               "', 'fortran_order': False, 'shape': " + shape + ", }");
        if (text.size() < headerLength)
            text.resize(headerLength, ' ');

        ByteWriter file;
        file.Text(magic).Put(majorVersion).Put(minorVersion).Put(headerLength).Text(text).Put(samples);
        return std::move(file.bytes);
    }

private:
    std::string magic = "\x93NUMPY";
    uint8_t majorVersion = 1;
    uint8_t minorVersion = 0;
    std::string descr = "|u1";
    std::string shape = "(1, 1)";
    std::optional<std::string> dictionary;
    uint16_t headerLength = 246;
    Bytes samples;
};
