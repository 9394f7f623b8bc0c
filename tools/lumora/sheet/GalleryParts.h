#pragma once

#include <string>
#include <string_view>

namespace Lumora {

/// The parts of the template of the HTML sheet, with the names of values in braces.
struct GalleryParts
{
    std::string_view head;
    std::string_view entry;
    std::string_view failure;
    std::string_view tail;
};

extern const GalleryParts galleryParts;

/// How every page begins.
[[nodiscard]] std::string_view GallerySignature() noexcept;

/// The line before the first entry.
[[nodiscard]] std::string_view GalleryListBegin() noexcept;

/// What the page of a shard has in the place of an entry that is left out.
inline constexpr std::string_view galleryLeftOut = "<!-- left out -->\n";

/// What the page of a shard has at its end: the text of its mark in a comment.
[[nodiscard]] std::string GalleryMark(std::wstring_view mark);

} // namespace Lumora
