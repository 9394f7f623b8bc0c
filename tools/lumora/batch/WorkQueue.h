#pragma once

#include "lumora/batch/FileReport.h"
#include "lumora/batch/FileTask.h"
#include "lumora/files/FileSource.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>

namespace Lumora {

/// A file on its way through a batch.
struct WorkItem
{
    SourceFile file;
    FileTask task;
    FileReport report;
    bool isDone = false;
};

/// Hands files from the thread that finds them to threads that work on them, and on, in the order in which
/// they were found, to the thread that takes the results. It holds a limited number of files. When somebody
/// wants to interrupt the program, it closes itself.
class WorkQueue
{
public:
    /// Has room for so many files. So many of them are worked on, or are done, at most.
    WorkQueue(size_t mostItems, size_t mostStarted) : limit(mostItems), startedLimit(mostStarted) {}

    /// Adds a file when there is room. One that is done already only waits for its turn. Returns false if the
    /// queue is closed.
    bool Add(std::unique_ptr<WorkItem> item);

    /// No more files will be added.
    void EndOfFiles();

    /// The next file that is to be worked on. Waits for it. Null when there are no more.
    [[nodiscard]] WorkItem* TakeWork();

    /// The work on the file is done.
    void Done(WorkItem& item);

    /// The next file in order. Waits until it is done. Null at the end. Throws what Fail was told, after all
    /// that was done before.
    [[nodiscard]] std::unique_ptr<WorkItem> TakeResult();

    /// Ends the batch with this exception.
    void Fail(std::exception_ptr failure);

    /// No more work is handed out; what is being worked on still has a result.
    void Close();

    /// How many files there are in all, as soon as that is known.
    [[nodiscard]] std::optional<size_t> Total();

private:
    /// Waits until it is true. Closes the queue when an interruption is wanted.
    template <class Condition>
    void Wait(std::unique_lock<std::mutex>& lock, const Condition& condition);

    const size_t limit;
    const size_t startedLimit;
    std::mutex mutex;
    std::condition_variable changed;
    /// Files that are not taken as results, in order. The first `started` of them are being worked on, or are
    /// done.
    std::deque<std::unique_ptr<WorkItem>> items;
    size_t started = 0;
    size_t added = 0;
    bool isComplete = false;
    bool isClosed = false;
    std::exception_ptr exception;
};

} // namespace Lumora
