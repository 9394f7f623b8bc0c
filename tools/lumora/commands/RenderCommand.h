#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/console/Console.h"

namespace Lumora {

/// Writes pictures of files. Returns the exit code.
[[nodiscard]] int RunRender(const CommandLine& line, Console& console);

} // namespace Lumora
