#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/console/Console.h"

namespace Lumora {

/// Tells why there is no thumbnail. Gives the exit code.
[[nodiscard]] int RunDoctor(const CommandLine& line, Console& console);

} // namespace Lumora
