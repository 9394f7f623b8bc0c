#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/batch/FileReport.h"
#include "lumora/batch/FileTask.h"
#include "lumora/console/Console.h"
#include "lumora/files/FileSource.h"
#include "lumora/shards/ShardMark.h"

#include <functional>

namespace Lumora {

/// What a command does with its files.
struct BatchWork
{
    /// What is to be done with a file. Called for each file in the order of the source, on another thread,
    /// and also for those of other shards. A Failure is that of the file.
    std::function<FileTask(const SourceFile&)> plan;
    /// Takes the outcome, in the same order, on the thread of RunBatch. An exception ends the batch.
    std::function<void(const SourceFile&, const FileReport&)> finish;
    /// About how many bytes a report holds, if it holds a picture.
    size_t reportBytes = 0;
    /// Takes, at the end of a shard, what its output must say.
    std::function<void(const ShardMark&)> endShard = [](const ShardMark&) {};
};

/// Works on all files that the command line names, with as many jobs as it asks for. Complains about each
/// failure, and passes it on. Returns the exit code. Throws a Failure if the batch cannot go on, or was
/// interrupted.
[[nodiscard]] int RunBatch(const CommandLine& line, Console& console, const BatchWork& work);

} // namespace Lumora
