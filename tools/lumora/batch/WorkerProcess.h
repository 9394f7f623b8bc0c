#pragma once

#include "lumora/batch/FileReport.h"
#include "lumora/batch/FileTask.h"

#include <memory>

namespace Lumora {

/// The only argument of this program when another one of it has started it to work on files.
inline constexpr wchar_t workerArgument[] = L"--worker";

/// A process of this program that works on files. It ends when this object does, and with this process.
class WorkerProcess
{
public:
    /// Throws a Failure if the process cannot be started.
    WorkerProcess();
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;
    ~WorkerProcess();

    /// Lets the process do the task. If it does not survive that, the report says so, and another process
    /// takes its place.
    [[nodiscard]] FileReport Do(FileTask& task);

private:
    /// What the system knows the process by, and the pipes to it.
    struct Means;
    const std::unique_ptr<Means> means;
};

/// What such a process does: takes tasks from its standard input and writes reports to its standard output,
/// until the input ends. Returns the exit code.
int RunWorkerProcess();

} // namespace Lumora
