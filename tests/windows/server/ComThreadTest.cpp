#include "registration/ClassIds.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/LumoraModule.h"
#include "windows/clients/PropertyStoreClient.h"
#include "windows/support/OtherThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <vector>

namespace {

using std::chrono::milliseconds;

/// Counts the calls that begin while another one is still under way. It lets other threads go first wherever
/// it can, so that they do when nothing holds them back.
class UnsharedStream : public TestStream
{
public:
    using TestStream::TestStream;

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* countRead) override
    {
        return Alone([&] { return TestStream::Read(buffer, count, countRead); });
    }

    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* newPosition) override
    {
        return Alone([&] { return TestStream::Seek(move, origin, newPosition); });
    }

    HRESULT STDMETHODCALLTYPE Stat(STATSTG* statistics, DWORD flags) override
    {
        return Alone([&] { return TestStream::Stat(statistics, flags); });
    }

    std::atomic<int> collisions{0};

private:
    template <typename Call>
    HRESULT Alone(Call call)
    {
        if (++callsUnderWay != 1)
            ++collisions;
        std::this_thread::yield();
        const HRESULT result = call();
        std::this_thread::yield();
        --callsUnderWay;
        return result;
    }

    std::atomic<int> callsUnderWay{0};
};

/// A stream whose reads wait, once it has been told to, until they are let go.
class WaitingStream : public TestStream
{
public:
    using TestStream::TestStream;

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* countRead) override
    {
        if (waits)
        {
            waits = false;
            reached.set_value();
            letGo.get_future().wait();
        }
        return TestStream::Read(buffer, count, countRead);
    }

    std::atomic<bool> waits{false};
    std::promise<void> reached;
    std::promise<void> letGo;
};

/// Does the work on several threads again and again. A number of rounds and not a time: on a busy machine a
/// thread may come too late for any round.
void OnThreadsInRounds(unsigned count, unsigned rounds,
                       const std::function<void(unsigned number, unsigned round)>& work)
{
    OnThreads(count, [&](unsigned number) {
        for (unsigned round = 0; round < rounds; ++round)
            work(number, round);
    });
}

/// True when a gray frame has the picture.
bool Shows(IWICBitmapFrameDecode* frame, const std::vector<uint8_t>& picture)
{
    std::vector<uint8_t> pixels(picture.size());
    return frame && frame->CopyPixels(nullptr, 4, static_cast<UINT>(pixels.size()), pixels.data()) == S_OK &&
           pixels == picture;
}

} // namespace

TEST(Threads, AreGivenTheFramesThatTheyAskOneDecoderFor)
{
    for (const unsigned threadCount : {2u, 4u})
    {
        SCOPED_TRACE(threadCount);
        UnsharedStream stream{GrayStack(3)};
        ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
        std::atomic<int> wrong{0};
        OnThreadsInRounds(threadCount, 500, [&](unsigned number, unsigned round) {
            // Each thread counts a reference of its own.
            // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
            const ComPtr<IWICBitmapDecoder> shared = decoder;
            const UINT index = (number + round) % 3;
            ComPtr<IWICBitmapFrameDecode> frame;
            UINT count = 0;
            const bool good = shared->GetFrame(index, frame.Put()) == S_OK &&
                              Shows(frame.Get(), grayPictures[index]) &&
                              shared->GetFrameCount(&count) == S_OK && count == 3;
            wrong += good ? 0 : 1;
        });
        EXPECT_EQ(wrong, 0);
        EXPECT_EQ(stream.collisions, 0);
        EXPECT_EQ(stream.references, 1u);
        EXPECT_EQ(decoder.Detach()->Release(), 0u);
        EXPECT_EQ(stream.references, 0u);
    }
}

TEST(Threads, CopyFromOneFrameTogether)
{
    TestStream stream{GrayStack(1)};
    ComPtr<IWICBitmapFrameDecode> frame = Frame(NewDecoder(stream), 0);
    std::atomic<int> wrong{0};
    OnThreadsInRounds(4, 200000, [&](unsigned, unsigned) {
        // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
        const ComPtr<IWICBitmapFrameDecode> shared = frame;
        wrong += Shows(shared.Get(), grayPictures[0]) ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(frame.Detach()->Release(), 0u);
}

TEST(Threads, LoseNoReference)
{
    const LumoraModule& module = LumoraModule::Shared();
    TestStream stream{GrayStack(1)};
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(module.dllGetClassObject(CLSID_LumoraDecoder, IID_IClassFactory, factory.PutVoid()), S_OK);
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(NewDecoder(stream), 0);
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    for (IUnknown* const object :
         {static_cast<IUnknown*>(factory.Get()), static_cast<IUnknown*>(decoder.Get()),
          static_cast<IUnknown*>(frame.Get()), static_cast<IUnknown*>(store.Get())})
    {
        OnThreads(4, [object](unsigned) {
            for (int round = 0; round < 50000; ++round)
            {
                object->AddRef();
                object->Release();
            }
        });
        EXPECT_EQ(object->AddRef(), 2u);
        EXPECT_EQ(object->Release(), 1u);
    }
}

TEST(Threads, OpenADecoderOnce)
{
    for (int round = 0; round < 200; ++round)
    {
        TestStream first{GrayStack(2)};
        TestStream second{GrayStack(2)};
        ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        std::atomic<int> opened{0};
        std::atomic<int> refused{0};
        OnThreads(2, [&](unsigned number) {
            const HRESULT result = Initialize(decoder, number == 0 ? first : second);
            if (result == S_OK)
                ++opened;
            if (result == WINCODEC_ERR_WRONGSTATE)
                ++refused;
        });
        ASSERT_EQ(opened, 1);
        ASSERT_EQ(refused, 1);
        ASSERT_EQ(first.references + second.references, 1u);
        ASSERT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
        decoder.Reset();
        ASSERT_EQ(first.references + second.references, 0u);
    }
}

TEST(Threads, WaitForTheOneThatDecodesOnlyWhereTheyMust)
{
    using Use = std::function<void(const ComPtr<IWICBitmapDecoder>& decoder)>;
    TestStream otherStream{GrayStack(2)};
    const Use askForTheFirst = [](const ComPtr<IWICBitmapDecoder>& decoder) {
        EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[0]);
    };
    const Use openAgain = [&otherStream](const ComPtr<IWICBitmapDecoder>& decoder) {
        EXPECT_EQ(Initialize(decoder, otherStream), WINCODEC_ERR_WRONGSTATE);
    };
    for (const Use& waits : {askForTheFirst, openAgain})
    {
        WaitingStream stream{GrayStack(2)};
        const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
        const ComPtr<IWICBitmapFrameDecode> first = Frame(decoder, 0);
        stream.waits = true;
        std::thread decoding([&] { EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]); });
        OnAnotherThread([&] { stream.reached.get_future().wait(); });

        OnAnotherThread([&] {
            EXPECT_EQ(FrameCount(decoder), 2u);
            GUID format{};
            EXPECT_EQ(decoder->GetContainerFormat(&format), S_OK);
            EXPECT_EQ(Picture(first), grayPictures[0]);
        });

        std::atomic<bool> finished{false};
        std::thread waiting([&] {
            waits(decoder);
            finished = true;
        });
        std::this_thread::sleep_for(milliseconds(100));
        EXPECT_FALSE(finished);
        stream.letGo.set_value();
        decoding.join();
        waiting.join();
    }
}

TEST(Threads, ReadPropertiesEachWithItsOwnStore)
{
    std::atomic<int> wrong{0};
    OnThreadsInRounds(4, 5000, [&](unsigned number, unsigned) {
        const uint32_t sections = number % 3 + 1;
        const std::array<std::wstring, 3> dimensions = {L"4 x 2", L"4 x 2 x 2", L"4 x 2 x 3"};
        TestStream stream{GrayStack(sections)};
        const ComPtr<IPropertyStore> store = NewPropertyStore();
        const bool good = Initialize(store, &stream) == S_OK && stream.references == 0 &&
                          ValueOf(store, servedKeys[2]) == PropertyValue{dimensions[sections - 1]};
        wrong += good ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0);
}
