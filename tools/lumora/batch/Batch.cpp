#include "lumora/batch/Batch.h"

#include "lumora/batch/EndWaiting.h"
#include "lumora/batch/FileWorker.h"
#include "lumora/batch/WorkQueue.h"
#include "lumora/batch/WorkerProcess.h"
#include "lumora/console/Failure.h"
#include "lumora/console/Interruption.h"
#include "lumora/console/Progress.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <list>
#include <optional>
#include <thread>

namespace Lumora {

namespace {

/// So many names are found ahead of the work at most, so that the time that is left can be told early.
constexpr size_t mostFound = 20'000;
/// So many files are worked on ahead of the results at most.
constexpr size_t mostAhead = 1000;
constexpr size_t memoryAhead = size_t{64} << 20;

/// How many files may be worked on before the result of the first one is taken.
size_t AheadOf(const CommandLine& line, size_t reportBytes)
{
    const size_t fitting = reportBytes == 0 ? mostAhead : memoryAhead / reportBytes;
    return std::clamp(fitting, size_t{2} * line.jobs, mostAhead);
}

/// Does tasks here, or with more than one job in another process, because a file could end the process.
class Worker
{
public:
    explicit Worker(uint32_t jobs) : isHere(jobs == 1) {}

    FileReport Do(FileTask& task)
    {
        if (isHere && !worker)
            worker.emplace();
        if (!isHere && !process)
            process.emplace();
        return isHere ? worker->Do(task) : process->Do(task);
    }

private:
    const bool isHere;
    std::optional<FileWorker> worker;
    std::optional<WorkerProcess> process;
};

FileSource SourceOf(const CommandLine& line, Worker& prober)
{
    std::unique_ptr<NameList> names;
    if (!line.namesFrom.empty())
        names = std::make_unique<NameList>(line.namesFrom, line.separator);
    return {line.paths, std::move(names), [&prober](const std::wstring& path) {
                FileTask task;
                task.path = path;
                task.wantsProperties = true;
                return !prober.Do(task).failure;
            }};
}

/// The threads of a batch. They end before this object does.
class Crew
{
public:
    /// The mark is complete when the queue has come to its end.
    Crew(WorkQueue& workQueue, const CommandLine& line, const BatchWork& work, ShardMark& mark)
        : Crew(workQueue)
    {
        finder = &Start([this, &line, &work, &mark] { Find(line, work, mark); });
        for (uint32_t job = 0; job < line.jobs; ++job)
            Start([this, &line] { DoTasks(line.jobs); });
    }
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;
    ~Crew()
    {
        queue.Close();
        // The finder may wait for a pipe, in which perhaps nothing comes any more.
        while (finder && !hasFound)
        {
            EndWaiting(*finder);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        for (std::thread& thread : threads)
            thread.join();
    }

private:
    // If a thread cannot be started, the destructor still waits for the others.
    explicit Crew(WorkQueue& workQueue) : queue(workQueue) {}

    template <class Job>
    std::thread& Start(Job job)
    {
        return threads.emplace_back([this, job] {
            try
            {
                job();
            }
            catch (...)
            {
                queue.Fail(std::current_exception());
            }
        });
    }

    void Find(const CommandLine& line, const BatchWork& work, ShardMark& mark)
    {
        const struct Finally
        {
            std::atomic<bool>& flag;
            ~Finally() { flag = true; }
        } whenDone = {hasFound};
        Worker prober(line.jobs);
        FileSource source = SourceOf(line, prober);
        while (std::optional<SourceFile> found = source.Next())
        {
            auto item = std::make_unique<WorkItem>();
            item->file = std::move(*found);
            item->report.failure = item->file.failure;
            if (!item->report.failure)
                item->report.failure = FailureOf([&] { item->task = work.plan(item->file); });
            item->isDone = item->report.failure.has_value();
            const bool isOurs = mark.shard.Has(mark.files);
            mark.Add(item->file);
            // The files of other shards have taken their names, too.
            if (!isOurs)
                continue;
            if (!queue.Add(std::move(item)))
                return;
        }
        queue.EndOfFiles();
    }

    void DoTasks(uint32_t jobs)
    {
        Worker worker(jobs);
        while (WorkItem* const item = queue.TakeWork())
        {
            item->report = worker.Do(item->task);
            queue.Done(*item);
            // The next result may be long in coming, and no other job may go on until then.
            if (Interruption::IsWanted())
                queue.Close();
        }
    }

    WorkQueue& queue;
    std::list<std::thread> threads;
    std::thread* finder = nullptr;
    std::atomic<bool> hasFound = false;
};

void Tell(Console& console, const CommandLine& line, const WorkItem& item)
{
    if (line.isVerbose)
    {
        for (const std::wstring& note : item.report.lines)
            console.Complain(item.file.name + L": " + note);
    }
    if (item.report.failure)
        console.Complain(L"lumora: " + item.file.name + L": " + *item.report.failure);
}

} // namespace

int RunBatch(const CommandLine& line, Console& console, const BatchWork& work)
{
    Progress progress(console);
    WorkQueue queue(mostFound, AheadOf(line, work.reportBytes));
    size_t files = 0;
    bool hasFailed = false;
    ShardMark mark = {.shard = line.shard.value_or(Shard())};
    {
        const Crew crew(queue, line, work, mark);
        while (const std::unique_ptr<WorkItem> item = queue.TakeResult())
        {
            Tell(console, line, *item);
            hasFailed = hasFailed || item->report.failure;
            work.finish(item->file, item->report);
            ++files;
            progress.Show(files, queue.Total(), item->file.name);
        }
    }
    if (Interruption::IsWanted())
        throw Failure{L"stopped after " + std::to_wstring(files) + (files == 1 ? L" file" : L" files")};
    if (line.shard)
        work.endShard(mark);
    return hasFailed ? 1 : 0;
}

} // namespace Lumora
