#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/console/Console.h"

namespace Lumora {

/// Writes a contact sheet of files. Returns the exit code.
[[nodiscard]] int RunSheet(const CommandLine& line, Console& console);

} // namespace Lumora
