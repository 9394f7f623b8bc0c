#include "lumora/batch/WorkerProcess.h"

#include "lumora/batch/FileWorker.h"
#include "lumora/batch/Message.h"
#include "lumora/batch/Pipe.h"
#include "lumora/console/Failure.h"
#include "lumora/files/Paths.h"

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

std::vector<uint8_t> Answer(FileWorker& worker, std::vector<uint8_t> message)
{
    FileTask task;
    MessageReader reader(std::move(message));
    reader.Field(task);
    FileReport report = worker.Do(task);
    MessageWriter writer;
    writer.Field(report);
    return writer.Take();
}

} // namespace

WorkerProcess::WorkerProcess() : job(MakeJob())
{
    Start();
}

WorkerProcess::~WorkerProcess()
{
    static_cast<void>(End());
}

void WorkerProcess::Start()
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
    tasks = std::move(input.writing);
    reports = std::move(output.reading);
}

/// Returns the exit code.
DWORD WorkerProcess::End()
{
    tasks.reset();
    reports.reset();
    WaitForSingleObject(process.get(), INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.get(), &exitCode);
    return exitCode;
}

FileReport WorkerProcess::Do(FileTask& task)
{
    MessageWriter writer;
    writer.Field(task);
    FileReport report;
    if (SendTo(tasks.get(), writer.Take()))
    {
        if (std::optional<std::vector<uint8_t>> message = ReceiveFrom(reports.get()))
        {
            MessageReader reader(std::move(*message));
            reader.Field(report);
            return report;
        }
    }
    report.failure = L"the process that worked on it has ended with " + HexText(End());
    Start();
    return report;
}

int RunWorkerProcess()
{
    // If it crashes, it ends at once, and nobody is asked.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    const HANDLE tasks = GetStdHandle(STD_INPUT_HANDLE);
    const HANDLE reports = GetStdHandle(STD_OUTPUT_HANDLE);
    FileWorker worker;
    while (std::optional<std::vector<uint8_t>> message = ReceiveFrom(tasks))
    {
        if (!SendTo(reports, Answer(worker, std::move(*message))))
            break;
    }
    return 0;
}

} // namespace Lumora
