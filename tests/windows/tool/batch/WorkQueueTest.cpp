#include "lumora/batch/WorkQueue.h"

#include "lumora/console/Failure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

using namespace Lumora;

namespace {

constexpr std::chrono::seconds patience(20);

std::unique_ptr<WorkItem> Item(const std::wstring& name, bool isDone = false)
{
    auto item = std::make_unique<WorkItem>();
    item->file.name = name;
    item->isDone = isDone;
    return item;
}

/// The name of the next result; empty at the end.
std::wstring NextResult(WorkQueue& queue)
{
    const std::unique_ptr<WorkItem> item = queue.TakeResult();
    return item ? item->file.name : std::wstring();
}

/// A call on another thread. It is still waiting after a moment.
template <class Call>
auto Waiting(Call call)
{
    auto result = std::async(std::launch::async, std::move(call));
    EXPECT_EQ(result.wait_for(std::chrono::milliseconds(30)), std::future_status::timeout);
    return result;
}

TEST(WorkQueue, GivesResultsInTheOrderOfTheFiles)
{
    WorkQueue queue(10, 10);
    for (const wchar_t* const name : {L"a", L"b", L"c"})
        EXPECT_TRUE(queue.Add(Item(name)));
    queue.EndOfFiles();
    WorkItem* const first = queue.TakeWork();
    WorkItem* const second = queue.TakeWork();
    WorkItem* const third = queue.TakeWork();
    EXPECT_EQ(third->file.name, L"c");
    EXPECT_EQ(queue.TakeWork(), nullptr);
    queue.Done(*third);
    queue.Done(*second);
    auto result = Waiting([&] { return NextResult(queue); });
    queue.Done(*first);
    EXPECT_EQ(result.get(), L"a");
    EXPECT_EQ(NextResult(queue), L"b");
    EXPECT_EQ(NextResult(queue), L"c");
    EXPECT_EQ(NextResult(queue), L"");
}

TEST(WorkQueue, KeepsTheOrderAndItsLimitWhileManyThreadsWork)
{
    constexpr size_t limit = 8;
    constexpr size_t files = 2000;
    WorkQueue queue(limit, limit);
    std::atomic<size_t> taken = 0;
    std::atomic<bool> wasTooFull = false;
    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        for (size_t number = 0; number < files; ++number)
        {
            // Every ninth file is known to have failed.
            queue.Add(Item(std::to_wstring(number), number % 9 == 0));
            // The result that made room may not be counted yet.
            if (number > taken + limit)
                wasTooFull = true;
        }
        queue.EndOfFiles();
    });
    for (unsigned worker = 0; worker < 4; ++worker)
    {
        threads.emplace_back([&queue] {
            while (WorkItem* const item = queue.TakeWork())
            {
                if (item->file.name.ends_with(L'3'))
                    std::this_thread::yield();
                item->report.lines = {item->file.name};
                queue.Done(*item);
            }
        });
    }
    for (size_t number = 0; number < files; ++number)
    {
        const std::unique_ptr<WorkItem> item = queue.TakeResult();
        ASSERT_TRUE(item);
        EXPECT_EQ(item->file.name, std::to_wstring(number));
        EXPECT_EQ(item->report.lines.size(), number % 9 == 0 ? 0U : 1U) << number;
        ++taken;
    }
    EXPECT_EQ(queue.TakeResult(), nullptr);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_FALSE(wasTooFull);
}

TEST(WorkQueue, HasRoomForSoManyFiles)
{
    WorkQueue queue(2, 2);
    EXPECT_TRUE(queue.Add(Item(L"a")));
    EXPECT_TRUE(queue.Add(Item(L"b")));
    auto third = Waiting([&queue] { return queue.Add(Item(L"c")); });
    WorkItem* const item = queue.TakeWork();
    queue.Done(*item);
    // A file that is done needs its place until somebody takes it.
    EXPECT_EQ(third.wait_for(std::chrono::milliseconds(30)), std::future_status::timeout);
    EXPECT_EQ(NextResult(queue), L"a");
    ASSERT_EQ(third.wait_for(patience), std::future_status::ready);
    EXPECT_TRUE(third.get());
}

TEST(WorkQueue, PassesFilesThatAreDoneWhenTheyArrive)
{
    WorkQueue queue(10, 10);
    queue.Add(Item(L"missing", true));
    EXPECT_EQ(NextResult(queue), L"missing") << "before anybody has looked for work";
    queue.Add(Item(L"a"));
    queue.Add(Item(L"gone", true));
    queue.Add(Item(L"b"));
    queue.EndOfFiles();
    WorkItem* const first = queue.TakeWork();
    WorkItem* const second = queue.TakeWork();
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->file.name, L"a");
    EXPECT_EQ(second->file.name, L"b");
    EXPECT_EQ(queue.TakeWork(), nullptr);
    queue.Done(*second);
    queue.Done(*first);
    EXPECT_EQ(NextResult(queue), L"a");
    EXPECT_EQ(NextResult(queue), L"gone");
    EXPECT_EQ(NextResult(queue), L"b");
    EXPECT_EQ(NextResult(queue), L"");
}

TEST(WorkQueue, PassesTheFirstFailureOnAndEnds)
{
    WorkQueue queue(1, 1);
    queue.Add(Item(L"a"));
    WorkItem* const item = queue.TakeWork();
    auto result = Waiting([&queue]() -> std::wstring {
        try
        {
            return NextResult(queue);
        }
        catch (const Failure& failure)
        {
            return failure.text;
        }
    });
    queue.Fail(std::make_exception_ptr(Failure{L"the first"}));
    queue.Fail(std::make_exception_ptr(Failure{L"the second"}));
    EXPECT_EQ(result.wait_for(patience), std::future_status::ready) << "it does not wait for work";
    queue.Done(*item);
    EXPECT_EQ(result.get(), L"the first");
    EXPECT_EQ(NextResult(queue), L"a") << "what is done is not lost";
    EXPECT_THROW(static_cast<void>(queue.TakeResult()), Failure) << "it does not get better";
    EXPECT_EQ(queue.TakeWork(), nullptr);
    EXPECT_FALSE(queue.Add(Item(L"b")));
}

TEST(WorkQueue, StillGivesTheResultsOfWorkThatHadBegunWhenItIsClosed)
{
    WorkQueue queue(10, 10);
    for (const wchar_t* const name : {L"a", L"b", L"c"})
        queue.Add(Item(name));
    WorkItem* const first = queue.TakeWork();
    WorkItem* const second = queue.TakeWork();
    queue.Close();
    EXPECT_EQ(queue.TakeWork(), nullptr);
    EXPECT_FALSE(queue.Add(Item(L"d")));
    queue.Done(*second);
    auto result = Waiting([&queue] { return NextResult(queue); });
    queue.Done(*first);
    EXPECT_EQ(result.get(), L"a");
    EXPECT_EQ(NextResult(queue), L"b");
    EXPECT_EQ(NextResult(queue), L"");
}

TEST(WorkQueue, WakesEverybodyWhenItIsClosed)
{
    WorkQueue full(1, 1);
    full.Add(Item(L"a"));
    auto adding = Waiting([&full] { return full.Add(Item(L"b")); });
    auto taking = Waiting([&full] { return NextResult(full); });
    WorkQueue empty(1, 1);
    auto working = Waiting([&empty] { return empty.TakeWork(); });
    full.Close();
    empty.Close();
    EXPECT_FALSE(adding.get());
    EXPECT_EQ(taking.get(), L"");
    EXPECT_EQ(working.get(), nullptr);
}

TEST(WorkQueue, KnowsTheTotalAtTheEndOfTheFiles)
{
    WorkQueue queue(10, 10);
    queue.Add(Item(L"a", true));
    queue.Add(Item(L"b", true));
    EXPECT_EQ(queue.Total(), std::nullopt);
    EXPECT_EQ(NextResult(queue), L"a");
    queue.EndOfFiles();
    EXPECT_EQ(queue.Total(), 2U);
    EXPECT_EQ(NextResult(queue), L"b");
    EXPECT_EQ(NextResult(queue), L"");
    EXPECT_EQ(queue.Total(), 2U);
}

} // namespace
