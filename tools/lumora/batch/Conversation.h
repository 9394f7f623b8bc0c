#pragma once

#include "lumora/batch/FileReport.h"
#include "lumora/batch/FileTask.h"
#include "lumora/files/ByteFile.h"

#include <optional>

namespace Lumora {

/// Lets the process at the other end of the pipes do a task. Nothing if it has not survived that.
[[nodiscard]] std::optional<FileReport> Ask(ByteFile& tasks, ByteFile& reports, FileTask& task);

/// What that process does: takes tasks from its standard input and writes reports to its standard output,
/// until the input ends.
void AnswerAll();

} // namespace Lumora
