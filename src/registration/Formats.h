#pragma once

#include "formats/Identification.h"

#include <array>
#include <span>
#include <vector>

namespace Lumora {

/// A file name extension under which a format's files are met.
struct Extension
{
    const wchar_t* text;
    /// Whether files of other kinds commonly bear it too. Then the shell may ask us about such a file, but
    /// nothing is said about all files of that name.
    bool isShared;
};

/// What Windows is told about one file format.
struct Format
{
    const wchar_t* mimeType;
    std::span<const Extension> extensions;
    /// What identification calls the format, or its two versions.
    std::array<Tav::Imaging::RawImage::Identity, 2> identities;
};

/// The formats that have a reader.
[[nodiscard]] std::span<const Format> Formats() noexcept;

/// The patterns of all formats, by which WIC offers us a stream.
[[nodiscard]] std::vector<Tav::Imaging::RawImage::HeaderPattern> HeaderPatterns();

} // namespace Lumora
