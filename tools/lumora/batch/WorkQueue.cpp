#include "lumora/batch/WorkQueue.h"

#include "lumora/console/Interruption.h"

#include <chrono>
#include <utility>

namespace Lumora {

template <class Condition>
void WorkQueue::Wait(std::unique_lock<std::mutex>& lock, const Condition& condition)
{
    constexpr std::chrono::milliseconds attention(100);
    while (!changed.wait_for(lock, attention, condition))
    {
        if (!isClosed && Interruption::IsWanted())
        {
            isClosed = true;
            changed.notify_all();
        }
    }
}

bool WorkQueue::Add(std::unique_ptr<WorkItem> item)
{
    std::unique_lock lock(mutex);
    Wait(lock, [this] { return isClosed || items.size() < limit; });
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
        const auto canStart = [this] { return started < items.size() && started < startedLimit; };
        const auto isAtEnd = [this] { return isClosed || (isComplete && started == items.size()); };
        Wait(lock, [&] { return canStart() || isAtEnd(); });
        if (Interruption::IsWanted())
            isClosed = true;
        if (isClosed || !canStart())
            return nullptr;
        WorkItem* const item = items[started++].get();
        if (!item->isDone)
            return item;
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
    Wait(lock, [&] { return exception || isNextDone() || isAtEnd(); });
    if (!isNextDone())
    {
        if (exception)
            std::rethrow_exception(exception);
        return nullptr;
    }
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
