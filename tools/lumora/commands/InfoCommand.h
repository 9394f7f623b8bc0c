#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/console/Console.h"

namespace Lumora {

/// Prints the properties of files. Returns the exit code.
[[nodiscard]] int RunInfo(const CommandLine& line, Console& console);

} // namespace Lumora
