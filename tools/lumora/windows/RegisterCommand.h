#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/console/Console.h"

namespace Lumora {

/// Registers Lumora, or checks its registration. Returns the exit code.
[[nodiscard]] int RunRegister(const CommandLine& line, Console& console);

/// Removes the registration. Returns the exit code.
[[nodiscard]] int RunUnregister(const CommandLine& line, Console& console);

} // namespace Lumora
