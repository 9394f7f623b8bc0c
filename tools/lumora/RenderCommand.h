#pragma once

#include "CommandLine.h"
#include "Console.h"

namespace Lumora {

/// Writes pictures of files. Gives the exit code.
[[nodiscard]] int RunRender(const CommandLine& line, Console& console);

} // namespace Lumora
