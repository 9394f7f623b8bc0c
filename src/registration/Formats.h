#pragma once

#include "formats/Identification.h"

#include <array>
#include <span>
#include <vector>

namespace Lumora {

/// A file name extension that files of a format have.
struct Extension
{
    const wchar_t* text;
    /// Whether other kinds of files commonly have it, too. Then the shell may ask us about such a file, but
    /// the extension is not registered as one of pictures.
    bool isShared;
};

/// What is registered with Windows for one file format.
struct Format
{
    const wchar_t* mimeType;
    std::span<const Extension> extensions;
    /// What identification calls the format, or its two versions.
    std::array<Tav::Imaging::RawImage::Identity, 2> identities;
};

/// The formats that have a reader.
[[nodiscard]] std::span<const Format> Formats() noexcept;

/// The patterns of all formats. WIC offers us the streams that match one.
[[nodiscard]] std::vector<Tav::Imaging::RawImage::HeaderPattern> HeaderPatterns();

} // namespace Lumora
