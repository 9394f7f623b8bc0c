#include "lumora/batch/WorkerProcess.h"

#include "lumora/batch/Conversation.h"
#include "lumora/files/Paths.h"
#include "lumora/linux/Errors.h"
#include "lumora/linux/files/FileHandle.h"

#include <cerrno>
#include <csignal>
#include <string>

#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Lumora {

namespace {

struct PipeEnds
{
    Descriptor reading;
    Descriptor writing;
};

PipeEnds MakePipe()
{
    int ends[2] = {};
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw Failure{L"cannot make a pipe: " + DescribeError(errno)};
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

/// What a new process gets.
class SpawnSettings
{
public:
    SpawnSettings(const Descriptor& input, const Descriptor& output)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, input.Value(), STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, output.Value(), STDOUT_FILENO);
        // What happens in the terminal does not concern it: when this process is interrupted, it lets the
        // other one finish its file.
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

std::wstring DescribeEnd(int status)
{
    if (WIFSIGNALED(status))
        return L"signal " + std::to_wstring(WTERMSIG(status));
    return L"exit code " + std::to_wstring(WEXITSTATUS(status));
}

} // namespace

/// One process after the other.
struct WorkerProcess::Means
{
    void Start();
    /// Waits for its end, and returns what it has ended with.
    [[nodiscard]] std::wstring End();

    pid_t process = 0;
    ByteFile tasks;
    ByteFile reports;
};

WorkerProcess::WorkerProcess() : means(std::make_unique<Means>())
{
    means->Start();
}

WorkerProcess::~WorkerProcess()
{
    static_cast<void>(means->End());
}

void WorkerProcess::Means::Start()
{
    PipeEnds input = MakePipe();
    PipeEnds output = MakePipe();
    const SpawnSettings settings(input.reading, output.writing);
    std::string program = "lumora";
    std::string argument = BytesOfName(workerArgument);
    char* const arguments[] = {program.data(), argument.data(), nullptr};
    if (const int error = posix_spawn(&process, "/proc/self/exe", &settings.actions, &settings.attributes,
                                      arguments, environ))
        throw Failure{L"cannot start another process of this program: " + DescribeError(error)};
    tasks = OwningFile(std::move(input.writing));
    reports = OwningFile(std::move(output.reading));
}

std::wstring WorkerProcess::Means::End()
{
    tasks = ByteFile();
    reports = ByteFile();
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR)
        continue;
    return DescribeEnd(status);
}

FileReport WorkerProcess::Do(FileTask& task)
{
    if (std::optional<FileReport> report = Ask(means->tasks, means->reports, task))
        return std::move(*report);
    FileReport report;
    report.failure = L"the process that worked on it has ended with " + means->End();
    means->Start();
    return report;
}

int RunWorkerProcess()
{
    // It ends with the program that has started it, also in the middle of a file.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    AnswerAll();
    return 0;
}

} // namespace Lumora
