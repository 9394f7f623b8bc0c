#include "formats/hdf/HdfMutexLock.h"
#include "formats/hdf/RawImageHdf.h"
#include "support/files/Hdf5File.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <thread>

using namespace Tav::Imaging::RawImage;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

using Clock = std::chrono::steady_clock;

namespace {

const char* const timeout = "[Lumora] HDF: Mutex timeout";

Bytes ImageFile()
{
    return Hdf5File().AnyDataSet("/image", H5T_STD_U16LE, {40, 50}).Build();
}

HANDLE LibraryMutex()
{
    return CreateMutexW(nullptr, 0, hdfMutexName);
}

/// Another thread that holds the library's mutex from the start of its life to the end, or for a minute: what
/// waits without end gets it then.
class Holder
{
public:
    Holder()
    {
        std::promise<DWORD> taken;
        std::future<DWORD> result = taken.get_future();
        thread = std::thread{[this, taken = std::move(taken)]() mutable {
            const HANDLE mutex = LibraryMutex();
            taken.set_value(WaitForSingleObject(mutex, 0));
            released.get_future().wait_for(1min);
            ReleaseMutex(mutex);
        }};
        EXPECT_EQ(result.get(), DWORD{WAIT_OBJECT_0});
    }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    ~Holder()
    {
        released.set_value();
        thread.join();
    }

private:
    std::promise<void> released;
    std::thread thread;
};

/// How often something timed is tried. A busy machine can stop a thread for a second now and then, but not
/// each of so many times: what fails every time fails by itself.
constexpr int attempts = 5;

/// The shortest time that the work takes, of as many attempts as it takes to stay below the limit.
template <typename Work>
Clock::duration ShortestTime(Clock::duration limit, Work work)
{
    Clock::duration shortest = Clock::duration::max();
    for (int attempt = 0; attempt < attempts && shortest >= limit; ++attempt)
    {
        const Clock::time_point start = Clock::now();
        work();
        shortest = std::min(shortest, Clock::now() - start);
    }
    return shortest;
}

// Run by itself: the mutex stays where it has been created.
TEST(HdfMissingMutex, FailsEveryRead)
{
    ASSERT_EQ(OpenMutexW(MUTEX_ALL_ACCESS, 0, hdfMutexName), nullptr);
    TestStream stream{ImageFile()};
    const auto read = [&stream] {
        RawImageHdf reader{nullptr};
        DiagnosticLines diagnostics;
        EXPECT_FALSE(reader.Read(&stream, stream.bytes.size(), readModeFrame, 0));
        EXPECT_THAT(diagnostics.Take(), ElementsAre(timeout));
        EXPECT_EQ(stream.readCalls, 0U);
        EXPECT_EQ(reader.fileType, FileType::Hdf);
    };
    EXPECT_LT(ShortestTime(500ms, read), 500ms) << "there is nothing to wait for";
}

TEST(HdfLock, IsCreatedTogetherWithTheReader)
{
    TestStream stream{ImageFile()};
    const std::unique_ptr<RawImageBase> reader{RawImage::CreateReader(&stream)};
    EXPECT_NE(reader, nullptr);
    EXPECT_NE(OpenMutexW(MUTEX_ALL_ACCESS, 0, hdfMutexName), nullptr);
}

TEST(HdfLock, IsWaitedForOneSecondAndNoLonger)
{
    const Bytes file = ImageFile();
    {
        const Holder holder;
        const auto fails = [&file] {
            const FileOpen open{file};
            EXPECT_FALSE(open.succeeded);
            EXPECT_THAT(open.lines, ElementsAre(timeout));
        };
        const Clock::duration waited = ShortestTime(2s, fails);
        EXPECT_GE(waited, 900ms);
        EXPECT_LT(waited, 2s);
        // What failed to take the mutex has not released it either.
        EXPECT_THAT((FileOpen{file}.lines), ElementsAre(timeout));
    }
    const FileOpen next{file};
    EXPECT_TRUE(next.succeeded);
    EXPECT_THAT(next.lines, IsEmpty());
}

TEST(HdfLock, IsTakenWhenItIsReleasedInTime)
{
    const Bytes file = ImageFile();
    bool isTaken = false;
    for (int attempt = 0; attempt < attempts && !isTaken; ++attempt)
    {
        auto holder = std::make_unique<Holder>();
        std::thread release{[&holder] {
            std::this_thread::sleep_for(200ms);
            holder.reset();
        }};
        isTaken = FileOpen{file}.succeeded;
        release.join();
    }
    EXPECT_TRUE(isTaken);
}

TEST(HdfLock, IsNotNeededToRefuseALargeFile)
{
    const Holder holder;
    TestStream stream{{}};
    RawImageHdf reader{nullptr};
    DiagnosticLines diagnostics;
    EXPECT_FALSE(reader.Read(&stream, 0x20000001, readModeFrame, 0));
    EXPECT_THAT(diagnostics.Take(), ElementsAre("[Lumora] HDF: File is too large (>512MB)"));
}

TEST(HdfLock, IsReleasedByEveryReadHoweverItEnds)
{
    const HANDLE mutex = LibraryMutex();
    const Bytes file = ImageFile();
    const Bytes noFile(file.begin(), file.begin() + 100);
    for (const Bytes& bytes : {file, noFile, Hdf5File().Group("/empty").Build()})
    {
        for (const uint32_t frameIndex : {0U, 1U})
        {
            const FileOpen open{bytes, readModeFrame, frameIndex};
            std::thread{[mutex] {
                EXPECT_EQ(WaitForSingleObject(mutex, 0), DWORD{WAIT_OBJECT_0});
                ReleaseMutex(mutex);
            }}.join();
        }
    }
}

/// Whether a thread reads the picture. It tries again when the others have kept it from its turn for a
/// second: it has read nothing of the file then.
bool ReadsPicture(const Bytes& file, uint32_t frameIndex)
{
    for (int tries = 0; tries < 30; ++tries)
    {
        TestStream stream{file};
        RawImageHdf reader{LibraryMutex()};
        if (reader.Read(&stream, file.size(), readModeFrame, frameIndex))
            return reader.displayPixels.size() == 2000;
        if (stream.readCalls > 0)
            return false;
    }
    return false;
}

TEST(HdfLock, LetsManyThreadsReadInTurn)
{
    const Bytes file = Hdf5File().AnyDataSet("/Image/Data", H5T_STD_U16LE, {40, 50, 4}).Build();
    std::array<std::thread, 4> threads;
    std::atomic<uint32_t> succeeded = 0;
    for (std::thread& thread : threads)
    {
        thread = std::thread{[&file, &succeeded] {
            for (uint32_t i = 0; i < 50; ++i)
                succeeded += ReadsPicture(file, i % 4) ? 1 : 0;
        }};
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(succeeded, 200U);
}

} // namespace
