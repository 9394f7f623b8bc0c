#pragma once

#include "formats/Identification.h"

#include <array>
#include <span>
#include <string_view>
#include <vector>

namespace Lumora {

/// Which other files have a file name extension, too. The shell asks about all files of an extension.
enum class Use
{
    /// Hardly any: Windows may take all files of the extension for pictures.
    Own,
    /// Files of other kinds.
    Shared,
    /// Files of the same format that hold any data, most of them no pictures.
    AnyData,
};

/// A file name extension that files of a format have.
struct Extension
{
    /// With its dot, in lowercase.
    const wchar_t* text;
    Use use;
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

/// The extension, with its dot and in any case, as it is registered; null if it never is.
[[nodiscard]] const Extension* RegisteredExtension(std::wstring_view text) noexcept;

/// The patterns of all formats. WIC offers us the streams that match one.
[[nodiscard]] std::vector<Tav::Imaging::RawImage::HeaderPattern> HeaderPatterns();

} // namespace Lumora
