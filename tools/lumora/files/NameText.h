#pragma once

#include <string>
#include <string_view>

namespace Lumora {

/// The text of a file's name in the encoding of the system: UTF-8; if it is not valid, what else names are
/// written in there.
[[nodiscard]] std::wstring TextOfName(std::string_view bytes);

} // namespace Lumora
