#include "lumora/batch/WorkQueue.h"

#include <utility>

namespace Lumora {

bool WorkQueue::Add(std::unique_ptr<WorkItem> item)
{
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return isClosed || items.size() < limit; });
    if (isClosed)
        return false;
    items.push_back(std::move(item));
    ++added;
    changed.notify_all();
    return true;
}

void WorkQueue::EndOfFiles()
{
    const std::lock_guard lock(mutex);
    isComplete = true;
    changed.notify_all();
}

WorkItem* WorkQueue::TakeWork()
{
    std::unique_lock lock(mutex);
    for (;;)
    {
        if (isClosed)
            return nullptr;
        while (started < items.size())
        {
            WorkItem* const item = items[started++].get();
            if (!item->isDone)
                return item;
        }
        if (isComplete)
            return nullptr;
        changed.wait(lock);
    }
}

void WorkQueue::Done(WorkItem& item)
{
    const std::lock_guard lock(mutex);
    item.isDone = true;
    changed.notify_all();
}

std::unique_ptr<WorkItem> WorkQueue::TakeResult()
{
    std::unique_lock lock(mutex);
    const auto isNextDone = [this] { return !items.empty() && items.front()->isDone; };
    const auto isAtEnd = [this] { return (isComplete && items.empty()) || (isClosed && started == 0); };
    changed.wait(lock, [&] { return exception || isNextDone() || isAtEnd(); });
    if (exception)
        std::rethrow_exception(exception);
    if (!isNextDone())
        return nullptr;
    std::unique_ptr<WorkItem> item = std::move(items.front());
    items.pop_front();
    // A file that was done when it was added may not have been passed by a worker.
    if (started > 0)
        --started;
    changed.notify_all();
    return item;
}

void WorkQueue::Fail(std::exception_ptr failure)
{
    const std::lock_guard lock(mutex);
    if (!exception)
        exception = std::move(failure);
    isClosed = true;
    changed.notify_all();
}

void WorkQueue::Close()
{
    const std::lock_guard lock(mutex);
    isClosed = true;
    changed.notify_all();
}

std::optional<size_t> WorkQueue::Total()
{
    const std::lock_guard lock(mutex);
    return isComplete ? std::optional(added) : std::nullopt;
}

} // namespace Lumora
