#pragma once

#include "CommandLine.h"
#include "Console.h"

namespace Lumora {

/// Prints the properties of files. Gives the exit code.
[[nodiscard]] int RunInfo(const CommandLine& line, Console& console);

} // namespace Lumora
