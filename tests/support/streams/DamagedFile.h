#pragma once

#include "support/streams/FileRead.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// The first `length` bytes of a file.
[[nodiscard]] Bytes FirstBytes(const Bytes& file, size_t length);

/// Checks what holds for every file, however damaged, when it is read for its header and for a frame: a
/// header read shows nothing, and a frame that can be shown has the facts and the size that the header
/// promised. A null reader is a read that failed. `place` tells in a report which damage it was.
void ExpectSaneReads(const Tav::Imaging::RawImage::RawImageBase* header, const Lines& headerLines,
                     const Tav::Imaging::RawImage::RawImageBase* frame, const Lines& frameLines,
                     uint32_t frameIndex, size_t place);

/// Opens a file of any format in both ways.
void ExpectSaneOutcome(const Bytes& file, uint32_t frameIndex, size_t place);

/// Gives a file to one format's reader in both ways, whatever the file's first bytes say.
template <typename Reader>
void ExpectSaneRead(const Bytes& file, uint32_t frameIndex, size_t place)
{
    const FileRead<Reader> header{file, 0, frameIndex};
    const FileRead<Reader> frame{file, 1, frameIndex};
    ExpectSaneReads(header.succeeded ? &header.reader : nullptr, header.lines,
                    frame.succeeded ? &frame.reader : nullptr, frame.lines, frameIndex, place);
}

/// Calls `check(file, place)` for every value of every single byte from `first` to before `end`.
template <typename Check>
void ForEveryChangedByte(Bytes file, size_t first, size_t end, Check check)
{
    for (size_t place = first; place < end; ++place)
    {
        const uint8_t original = file.at(place);
        for (uint32_t value = 0; value < 256; ++value)
        {
            file[place] = static_cast<uint8_t>(value);
            check(file, place);
        }
        file[place] = original;
    }
}

/// The same for the first `headerBytes` bytes.
template <typename Check>
void ForEveryChangedByte(Bytes file, size_t headerBytes, Check check)
{
    ForEveryChangedByte(std::move(file), 0, headerBytes, check);
}
