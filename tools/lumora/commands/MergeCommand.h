#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/console/Console.h"

namespace Lumora {

/// Joins the outputs of all shards of a run. Returns the exit code. Throws a Failure.
[[nodiscard]] int RunMerge(const CommandLine& line, Console& console);

} // namespace Lumora
