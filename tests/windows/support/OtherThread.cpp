#include "windows/support/OtherThread.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <thread>
#include <utility>
#include <vector>

void OnAnotherThread(const std::function<void()>& work)
{
    std::packaged_task<void()> task(work);
    std::future<void> finished = task.get_future();
    std::thread thread(std::move(task));
    if (finished.wait_for(std::chrono::minutes(1)) != std::future_status::ready)
    {
        std::fputs("A thread is stuck: a lock has not been left\n", stderr);
        std::_Exit(EXIT_FAILURE);
    }
    thread.join();
    finished.get();
}

void OnThreads(unsigned count, const std::function<void(unsigned number)>& work)
{
    std::vector<std::thread> threads;
    for (unsigned number = 0; number < count; ++number)
        threads.emplace_back(work, number);
    for (std::thread& thread : threads)
        thread.join();
}
