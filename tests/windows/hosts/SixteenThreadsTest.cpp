#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/hosts/SampleFiles.h"
#include "windows/support/OtherThread.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr unsigned threadCount = 16;

/// Keeps each thread until all have come.
class Start
{
public:
    void Wait()
    {
        ++here;
        while (here < threadCount)
            std::this_thread::yield();
    }

private:
    std::atomic<unsigned> here{0};
};

/// A part of a page that cannot be written to. The thread that tries waits until it is let go.
class ClosedPage
{
public:
    ClosedPage()
    {
        current = this;
        handler = AddVectoredExceptionHandler(1, WaitAtThePage);
    }
    ClosedPage(const ClosedPage&) = delete;
    ClosedPage& operator=(const ClosedPage&) = delete;

    ~ClosedPage()
    {
        RemoveVectoredExceptionHandler(handler);
        VirtualFree(page, 0, MEM_RELEASE);
    }

    uint8_t* const page =
        static_cast<uint8_t*>(VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READONLY));
    std::promise<void> reached;
    std::promise<void> letGo;

private:
    static constexpr size_t bytes = 4096;

    static LONG CALLBACK WaitAtThePage(EXCEPTION_POINTERS* pointers)
    {
        const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
        const auto page = reinterpret_cast<uintptr_t>(current->page);
        if (record.ExceptionCode != EXCEPTION_ACCESS_VIOLATION || record.ExceptionInformation[1] < page ||
            record.ExceptionInformation[1] >= page + bytes)
            return EXCEPTION_CONTINUE_SEARCH;
        current->reached.set_value();
        current->letGo.get_future().wait();
        DWORD before = 0;
        VirtualProtect(current->page, bytes, PAGE_READWRITE, &before);
        return EXCEPTION_CONTINUE_EXECUTION;
    }

    static inline ClosedPage* current = nullptr;
    PVOID handler = nullptr;
};

} // namespace

TEST(SixteenThreads, OpenOneDecoderOnce)
{
    for (int round = 0; round < 20; ++round)
    {
        std::vector<std::unique_ptr<TestStream>> streams;
        for (unsigned i = 0; i < threadCount; ++i)
            streams.push_back(std::make_unique<TestStream>(GrayStack(2)));
        ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        std::atomic<unsigned> opened{0};
        std::atomic<unsigned> refused{0};
        Start start;
        OnThreads(threadCount, [&](unsigned number) {
            start.Wait();
            const HRESULT result = Initialize(decoder, *streams[number]);
            opened += result == S_OK ? 1 : 0;
            refused += result == WINCODEC_ERR_WRONGSTATE ? 1 : 0;
        });
        EXPECT_EQ(opened, 1U);
        EXPECT_EQ(refused, threadCount - 1);
        EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
        decoder.Reset();
        for (const auto& stream : streams)
            EXPECT_EQ(stream->references, 0U);
    }
}

TEST(SixteenThreads, OpenADecoderEach)
{
    for (const SampleFile& sample : SampleFiles())
    {
        SCOPED_TRACE(sample.name);
        TestStream firstStream{sample.content};
        const Bytes picture = Picture(Frame(NewDecoder(firstStream), 0));
        // On a busy machine an HDF5 file may wait for the others longer than it is allowed to.
        const bool mayGiveUp = IsHdf(sample);
        std::atomic<int> wrong{0};
        Start start;
        OnThreads(threadCount, [&](unsigned) {
            TestStream stream{sample.content};
            ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
            start.Wait();
            const HRESULT result = Initialize(decoder, stream);
            const bool isRight = result == S_OK ? Picture(Frame(decoder, 0)) == picture
                                                : result == WINCODEC_ERR_WRONGSTATE && mayGiveUp;
            decoder.Reset();
            wrong += isRight && stream.references == 0 ? 0 : 1;
        });
        EXPECT_EQ(wrong, 0);
    }
}

TEST(TwoThreads, MayReleaseWhatTheOtherCopiesFrom)
{
    TestStream stream{GrayStack(1)};
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    ComPtr<IWICBitmapFrameDecode> frame = Frame(decoder, 0);
    ClosedPage target;
    std::thread copying([&target, copied = frame]() mutable {
        EXPECT_EQ(copied->CopyPixels(nullptr, 4, 8, target.page), S_OK);
        EXPECT_EQ(copied.Detach()->Release(), 0U) << "the last reference";
    });
    OnAnotherThread([&] { target.reached.get_future().wait(); });
    OnAnotherThread([&] {
        decoder.Reset();
        frame.Reset();
        EXPECT_EQ(stream.references, 0U);
    });
    target.letGo.set_value();
    copying.join();
    EXPECT_EQ(Bytes(target.page, target.page + 8), grayPictures[0]);
}
