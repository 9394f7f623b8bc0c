#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/console/Console.h"
#include "lumora/files/FileList.h"

#include <functional>
#include <optional>
#include <string>

namespace Lumora {

/// Does the work on every file of the list, and goes on after one that fails. Writes a failure to standard
/// error, with the reader's last line if there is one. Calls `whenDone` for each file, with the failure if
/// there is one; an exception from it ends the loop. Returns the exit code.
int ForEachFile(
    const FileList& list, const CommandLine& line, Console& console,
    const std::function<void(const SourceFile&)>& work,
    const std::function<void(const SourceFile&, const std::optional<std::wstring>& failure)>& whenDone = {});

} // namespace Lumora
