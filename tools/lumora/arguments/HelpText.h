#pragma once

#include "lumora/arguments/CommandLine.h"

#include <string>

namespace Lumora {

/// How a command is used; for Command::None, how the program is used.
[[nodiscard]] std::wstring HelpText(Command command);

/// The command line that prints this text, for somebody who used the command wrongly.
[[nodiscard]] std::wstring HelpInvocation(Command command);

} // namespace Lumora
