#pragma once

#include <string>
#include <string_view>

namespace Lumora {

/// The text as UTF-8 for an element, or for the value of an attribute in quotes. What HTML cannot hold
/// becomes U+FFFD: control characters other than the tab and the line feed, and code points that are no
/// characters.
[[nodiscard]] std::string HtmlText(std::wstring_view text);

/// The path, whose parts are separated by '/', as a relative URL (RFC 3986).
[[nodiscard]] std::string RelativeUrl(std::wstring_view path);

} // namespace Lumora
