#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/console/Console.h"
#include "lumora/files/FileList.h"

#include <functional>
#include <optional>
#include <string>

namespace Lumora {

/// Does the work on every file of the list, and goes on after one that fails. A failure is told on standard
/// error, with the reader's last note if it wrote any. `whenDone` hears of each file, and why it failed if it
/// did; what that throws ends the loop. Gives the exit code.
int ForEachFile(
    const FileList& list, const CommandLine& line, Console& console,
    const std::function<void(const SourceFile&)>& work,
    const std::function<void(const SourceFile&, const std::optional<std::wstring>& failure)>& whenDone = {});

} // namespace Lumora
