#include "registration/ClassIds.h"
#include "support/gray/GrayFiles.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/LumoraModule.h"
#include "windows/hosts/ProcessHoldings.h"
#include "windows/support/ModuleHeap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

// A thread that runs the module's code is given memory by the run-time library in it, which must be given
// back when the thread ends: there are programs that start a thread for each picture.

namespace {

/// A file that a thread decodes, and what it shows.
struct Task
{
    Bytes content;
    StreamFaults faults;
    /// The first frame; nothing if there is none.
    std::optional<Bytes> picture;
};

/// Three tasks for a file: to decode it, to refuse it because it is too short, and to fail at its second
/// read. An exception leaves the module then in most formats, and the run-time library takes memory for it.
void AppendTasks(std::vector<Task>& tasks, const GrayFile& file)
{
    const Bytes tooShort(file.content.begin(), file.content.begin() + 63);
    tasks.push_back({file.content, {}, file.pictures[0]});
    tasks.push_back({tooShort, {}, {}});
    tasks.push_back({file.content, {.failReadAt = 2}, {}});
}

bool IsHdf(const GrayFile& file)
{
    return file.name == "gray.h5";
}

/// The tasks of every format but HDF5.
std::vector<Task> Tasks()
{
    std::vector<Task> tasks;
    AppendTasks(tasks, {"gray.mrc", GrayStack(1), {grayPictures[0]}, L"", L""});
    for (const GrayFile& file : GrayFiles())
    {
        if (!IsHdf(file))
            AppendTasks(tasks, file);
    }
    return tasks;
}

/// True if the task has its result, and everything is released.
bool Succeeds(const LumoraModule& module, const Task& task)
{
    TestStream stream{task.content, task.faults};
    auto decoder = module.Create<IWICBitmapDecoder>(CLSID_LumoraDecoder, IID_IWICBitmapDecoder);
    bool isOpen = false;
    try
    {
        isOpen = Initialize(decoder, stream) == S_OK;
    }
    catch (const std::runtime_error&)
    {
        isOpen = false;
    }
    const bool isRight =
        isOpen == task.picture.has_value() && (!isOpen || Picture(Frame(decoder, 0)) == *task.picture);
    decoder.Reset();
    return isRight && stream.references == 0;
}

/// Threads that wait until they are let go, and then do one task each. They are Windows' own: the run-time
/// library has not made them and does not know when they end.
class WaitingThreads
{
public:
    static constexpr size_t count = 16;

    WaitingThreads(const std::vector<Task>& tasks, size_t firstTask)
    {
        jobs.reserve(count);
        for (size_t i = 0; i < count; ++i)
        {
            jobs.push_back({*this, tasks[(firstTask + i) % tasks.size()]});
            threads.push_back(CreateThread(nullptr, 0, Run, &jobs.back(), 0, nullptr));
        }
    }
    WaitingThreads(const WaitingThreads&) = delete;
    WaitingThreads& operator=(const WaitingThreads&) = delete;

    ~WaitingThreads()
    {
        for (const HANDLE thread : threads)
            CloseHandle(thread);
        CloseHandle(start);
    }

    /// Lets the threads go, waits for their ends, and returns how many tasks had another result.
    [[nodiscard]] int Finish(const LumoraModule& loaded)
    {
        module = &loaded;
        SetEvent(start);
        for (const HANDLE thread : threads)
            WaitForSingleObject(thread, INFINITE);
        return wrong;
    }

private:
    struct Job
    {
        WaitingThreads& group;
        const Task& task;
    };

    static DWORD WINAPI Run(void* parameter)
    {
        const Job& job = *static_cast<const Job*>(parameter);
        WaitForSingleObject(job.group.start, INFINITE);
        job.group.wrong += Succeeds(*job.group.module, job.task) ? 0 : 1;
        return 0;
    }

    HANDLE start = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const LumoraModule* module = nullptr;
    std::atomic<int> wrong{0};
    std::vector<Job> jobs;
    std::vector<HANDLE> threads;
};

/// Does as many tasks as that, each on a thread of its own, and returns how many had another result.
int DoTasks(const LumoraModule& module, const std::vector<Task>& tasks, size_t count)
{
    int wrong = 0;
    for (size_t done = 0; done < count; done += WaitingThreads::count)
        wrong += WaitingThreads(tasks, done).Finish(module);
    return wrong;
}

/// Expects that the threads between two measurements have left nothing behind. The run-time library makes its
/// locks when two threads first meet at them, so a few blocks and handles may come at any time.
void ExpectNothingLeft(const ProcessHoldings& before, const ProcessHoldings& after, size_t threads)
{
    EXPECT_LT(after.moduleBlocks, before.moduleBlocks + threads / 10);
    EXPECT_LT(after.handles, before.handles + threads / 10);
}

} // namespace

TEST(ManyThreads, LeaveNothingBehind)
{
    const LumoraModule& module = LumoraModule::Shared();
    const std::vector<Task> tasks = Tasks();
    const ModuleHeap heap{module.handle};
    EXPECT_EQ(DoTasks(module, tasks, 1000), 0);
    const ProcessHoldings before{heap};
    constexpr size_t threads = 9000;
    EXPECT_EQ(DoTasks(module, tasks, threads), 0);
    const ProcessHoldings after{heap};
    ExpectNothingLeft(before, after, threads);
    constexpr size_t bytesOfAThread = 512;
    EXPECT_LT(after.bytes, before.bytes + threads * bytesOfAThread);
}

TEST(ManyThreads, LeaveTheHandlesOfTheMutexBehind)
{
    // The mutex must live as long as the process, so a reader of HDF5 closes none of its two handles.
    const LumoraModule& module = LumoraModule::Shared();
    std::vector<Task> tasks;
    const std::vector<GrayFile> files = GrayFiles();
    AppendTasks(tasks, *std::ranges::find_if(files, IsHdf));
    const ModuleHeap heap{module.handle};
    EXPECT_EQ(DoTasks(module, tasks, 48), 0);
    ProcessHoldings before{heap};
    constexpr size_t threads = 480;
    EXPECT_EQ(DoTasks(module, tasks, threads), 0);
    // A third of the tasks is refused before there is a reader.
    before.handles += threads / 3 * 2 * 2;
    const ProcessHoldings after{heap};
    EXPECT_GE(after.handles, before.handles);
    ExpectNothingLeft(before, after, threads);
}

TEST(ManyThreads, MayBeOlderThanTheModule)
{
    const std::vector<Task> tasks = Tasks();
    std::vector<std::unique_ptr<WaitingThreads>> groups;
    for (size_t i = 0; i < 20; ++i)
        groups.push_back(std::make_unique<WaitingThreads>(tasks, i * WaitingThreads::count));
    FreshLumoraModule module;
    const ModuleHeap heap{module->handle};
    EXPECT_EQ(groups.front()->Finish(*module.operator->()), 0);
    const ProcessHoldings before{heap};
    for (size_t i = 1; i < groups.size(); ++i)
        EXPECT_EQ(groups[i]->Finish(*module.operator->()), 0);
    ExpectNothingLeft(before, ProcessHoldings{heap}, (groups.size() - 1) * WaitingThreads::count);
}
