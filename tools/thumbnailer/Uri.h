#pragma once

#include <string>
#include <string_view>

namespace Lumora {

/// The path of a local file from its file: URI (RFC 8089), or the text itself if it is no URI of a file.
/// Throws std::runtime_error for a URI of another machine, and for one that is no path.
[[nodiscard]] std::string PathOf(std::string_view pathOrUri);

/// The file: URI of a path from the root on.
[[nodiscard]] std::string UriOf(std::string_view path);

} // namespace Lumora
