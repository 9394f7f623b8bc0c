#pragma once

#include "lumora/arguments/CommandLine.h"

#include <string_view>

namespace Lumora {

/// How the command is used; without a command, how the program is.
[[nodiscard]] std::wstring_view HelpText(Command command) noexcept;

/// How that text is called up, for somebody who used the command wrongly.
[[nodiscard]] std::wstring_view HelpInvocation(Command command) noexcept;

} // namespace Lumora
