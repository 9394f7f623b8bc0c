#include "lumora/batch/WorkerProcess.h"

#include "lumora/batch/Conversation.h"
#include "lumora/files/Paths.h"
#include "lumora/windows/Results.h"
#include "lumora/windows/files/FileHandle.h"

#include <mutex>

namespace Lumora {

namespace {

/// While a handle can be inherited, no other thread may start a process: that process would inherit it, too,
/// and keep the pipe open.
std::mutex inheriting;

struct PipeEnds
{
    OwnedHandle reading;
    OwnedHandle writing;
};

PipeEnds MakePipe()
{
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    if (!CreatePipe(&reading, &writing, nullptr, 0))
        throw Failure{L"cannot make a pipe: " + DescribeError(GetLastError())};
    return {OwnedHandle(reading), OwnedHandle(writing)};
}

OwnedHandle MakeJob()
{
    OwnedHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (!job ||
        !SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits)))
        throw Failure{L"cannot make a job: " + DescribeError(GetLastError())};
    return job;
}

} // namespace

/// One process after the other.
struct WorkerProcess::Means
{
    void Start();
    /// Waits for its end, and returns the exit code.
    [[nodiscard]] DWORD End();

    /// Windows ends the processes of this job when the last handle of it is closed.
    const OwnedHandle job = MakeJob();
    OwnedHandle process;
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
    std::wstring program = ProgramPath();
    std::wstring commandLine = L'"' + program + L"\" " + workerArgument;

    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.reading.get();
    startup.hStdOutput = output.writing.get();
    PROCESS_INFORMATION started = {};
    {
        const std::lock_guard lock(inheriting);
        SetHandleInformation(startup.hStdInput, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
        SetHandleInformation(startup.hStdOutput, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
        // It must belong to the job before it runs. What happens in the terminal does not concern it: when
        // this process is interrupted, it lets the other one finish its file.
        const BOOL isStarted =
            CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                           CREATE_SUSPENDED | DETACHED_PROCESS, nullptr, nullptr, &startup, &started);
        const DWORD error = GetLastError();
        input.reading.reset();
        output.writing.reset();
        if (!isStarted)
            throw Failure{L"cannot start another process of this program: " + DescribeError(error)};
    }
    process.reset(started.hProcess);
    const OwnedHandle thread(started.hThread);
    if (!AssignProcessToJobObject(job.get(), process.get()))
    {
        const DWORD error = GetLastError();
        TerminateProcess(process.get(), 1);
        throw Failure{L"cannot put a process into the job: " + DescribeError(error)};
    }
    ResumeThread(thread.get());
    tasks = OwningFile(input.writing.release());
    reports = OwningFile(output.reading.release());
}

DWORD WorkerProcess::Means::End()
{
    tasks.Close();
    reports.Close();
    WaitForSingleObject(process.get(), INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.get(), &exitCode);
    return exitCode;
}

FileReport WorkerProcess::Do(FileTask& task)
{
    if (std::optional<FileReport> report = Ask(means->tasks, means->reports, task))
        return std::move(*report);
    FileReport report;
    report.failure = L"the process that worked on it has ended with " + HexText(means->End());
    means->Start();
    return report;
}

int RunWorkerProcess()
{
    // If it crashes, it ends at once, and nobody is asked.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    AnswerAll();
    return 0;
}

} // namespace Lumora
