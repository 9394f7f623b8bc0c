#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/console/Console.h"

namespace Lumora {

/// Explains why a thumbnail is missing. Returns the exit code.
[[nodiscard]] int RunDoctor(const CommandLine& line, Console& console);

} // namespace Lumora
