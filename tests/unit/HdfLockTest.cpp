#include "formats/HdfMutexLock.h"
#include "formats/RawImageHdf.h"
#include "support/FileRead.h"
#include "support/Hdf5File.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <thread>

using namespace Tav::Imaging::RawImage;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<uint8_t>;
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

/// Another thread that holds the library's mutex from the start of its life to the end.
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
            released.get_future().wait();
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

// Run by itself: the mutex stays where it has been created.
TEST(HdfMissingMutex, FailsEveryRead)
{
    ASSERT_EQ(OpenMutexW(MUTEX_ALL_ACCESS, 0, hdfMutexName), nullptr);
    TestStream stream{ImageFile()};
    RawImageHdf reader{nullptr};
    DiagnosticLines diagnostics;
    const Clock::time_point start = Clock::now();
    EXPECT_FALSE(reader.Read(&stream, stream.bytes.size(), readModeFrame, 0));
    EXPECT_LT(Clock::now() - start, 500ms) << "there is nothing to wait for";
    EXPECT_THAT(diagnostics.Take(), ElementsAre(timeout));
    EXPECT_EQ(stream.readCalls, 0U);
    EXPECT_EQ(reader.fileType, FileType::Hdf);
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
        const Clock::time_point start = Clock::now();
        const FileOpen open{file};
        const Clock::duration waited = Clock::now() - start;
        EXPECT_FALSE(open.succeeded);
        EXPECT_THAT(open.lines, ElementsAre(timeout));
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
    auto holder = std::make_unique<Holder>();
    std::thread release{[&holder] {
        std::this_thread::sleep_for(200ms);
        holder.reset();
    }};
    EXPECT_TRUE(FileOpen{file}.succeeded);
    release.join();
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

TEST(HdfLock, LetsManyThreadsReadInTurn)
{
    const Bytes file = Hdf5File().AnyDataSet("/Image/Data", H5T_STD_U16LE, {40, 50, 4}).Build();
    std::array<std::thread, 4> threads;
    std::atomic<uint32_t> succeeded = 0;
    for (std::thread& thread : threads)
    {
        thread = std::thread{[&file, &succeeded] {
            for (uint32_t i = 0; i < 50; ++i)
            {
                TestStream stream{file};
                RawImage image;
                if (image.Open(&stream, readModeFrame, i % 4) && image.Reader()->displayPixels.size() == 2000)
                    ++succeeded;
            }
        }};
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(succeeded, 200U);
}

} // namespace
