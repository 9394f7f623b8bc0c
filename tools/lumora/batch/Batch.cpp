#include "lumora/batch/Batch.h"

#include "lumora/batch/FileWorker.h"
#include "lumora/batch/Interruption.h"
#include "lumora/batch/WorkQueue.h"
#include "lumora/batch/WorkerProcess.h"
#include "lumora/console/ComApartment.h"
#include "lumora/console/Failure.h"
#include "lumora/console/Progress.h"

#include <algorithm>
#include <thread>
#include <vector>

namespace Lumora {

namespace {

/// So many files wait at most. Each may hold a picture.
constexpr size_t largestQueue = 1000;
constexpr size_t memoryOfQueue = size_t{64} << 20;

size_t QueueSize(const CommandLine& line)
{
    const size_t side = line.longerSide.value_or(0);
    const size_t picture = line.command == Command::Sheet ? side * side * PixelBlock::bytesPerPixel : 0;
    const size_t fitting = picture == 0 ? largestQueue : memoryOfQueue / picture;
    return std::clamp(fitting, size_t{2} * line.jobs, largestQueue);
}

FileSource SourceOf(const CommandLine& line)
{
    std::unique_ptr<NameList> names;
    if (!line.namesFrom.empty())
        names = std::make_unique<NameList>(line.namesFrom, line.separator);
    return {line.paths, std::move(names), FolderRule::ReadableToo};
}

/// The threads of a batch. They end before this object does.
class Crew
{
public:
    Crew(WorkQueue& workQueue, FileSource source, const BatchWork& work, uint32_t jobs) : queue(workQueue)
    {
        Start([this, source = std::move(source), &work]() mutable { Find(source, work); });
        for (uint32_t job = 0; job < jobs; ++job)
            Start([this, jobs] { jobs == 1 ? WorkHere() : LetProcessWork(); });
    }
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;
    ~Crew()
    {
        queue.Close();
        for (std::thread& thread : threads)
            thread.join();
    }

private:
    template <class Job>
    void Start(Job job)
    {
        threads.emplace_back([this, job = std::move(job)]() mutable {
            try
            {
                const ComApartment apartment;
                job();
            }
            catch (...)
            {
                queue.Fail(std::current_exception());
            }
        });
    }

    void Find(FileSource& source, const BatchWork& work)
    {
        while (std::optional<SourceFile> found = source.Next())
        {
            auto item = std::make_unique<WorkItem>();
            item->file = std::move(*found);
            item->report.failure = item->file.failure;
            if (!item->report.failure)
                item->report.failure = FailureOf([&] { item->task = work.plan(item->file); });
            item->isDone = item->report.failure.has_value();
            if (!queue.Add(std::move(item)))
                return;
        }
        queue.EndOfFiles();
    }

    void WorkHere()
    {
        FileWorker worker;
        WorkWith(worker);
    }

    void LetProcessWork()
    {
        WorkerProcess worker;
        WorkWith(worker);
    }

    template <class Worker>
    void WorkWith(Worker& worker)
    {
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
    std::vector<std::thread> threads;
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
    const Interruption interruption;
    Progress progress(console);
    WorkQueue queue(QueueSize(line));
    size_t files = 0;
    bool hasFailed = false;
    {
        const Crew crew(queue, SourceOf(line), work, line.jobs);
        while (const std::unique_ptr<WorkItem> item = queue.TakeResult())
        {
            Tell(console, line, *item);
            hasFailed = hasFailed || item->report.failure;
            work.finish(item->file, item->report);
            ++files;
            progress.Show(files, queue.Total(), item->file.name);
            if (Interruption::IsWanted())
                queue.Close();
        }
    }
    if (Interruption::IsWanted())
        throw Failure{L"stopped after " + std::to_wstring(files) + (files == 1 ? L" file" : L" files")};
    return hasFailed ? 1 : 0;
}

} // namespace Lumora
