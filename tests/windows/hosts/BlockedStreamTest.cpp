#include "windows/clients/DecoderClient.h"
#include "windows/clients/Outcome.h"
#include "windows/clients/PropertyStoreClient.h"
#include "windows/hosts/SampleFiles.h"
#include "windows/support/CallingStream.h"
#include "windows/support/OtherThread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <future>
#include <string>
#include <thread>
#include <vector>

// A stream can block for as long as a network drive takes to answer. These tests let it block until the other
// threads are done, so they end only if these need not wait for it.

namespace {

/// A thread that decodes a sample, and is blocked where the reader reads for the first time.
class BlockedThread
{
public:
    explicit BlockedThread(const SampleFile& sample) : stream(sample.content)
    {
        // The first read only identifies the format.
        stream.readsBefore = 1;
        stream.beforeRead = [this] {
            reached.set_value();
            letGo.get_future().wait();
        };
        thread = std::thread([this] { EXPECT_FALSE(Picture(Frame(NewDecoder(stream), 0)).empty()); });
        OnAnotherThread([this] { reached.get_future().wait(); });
    }
    BlockedThread(const BlockedThread&) = delete;
    BlockedThread& operator=(const BlockedThread&) = delete;

    ~BlockedThread()
    {
        letGo.set_value();
        thread.join();
    }

private:
    CallingStream stream;
    std::promise<void> reached;
    std::promise<void> letGo;
    std::thread thread;
};

/// Opens a sample on another thread, for its picture and for its properties.
std::array<Outcome, 2> Open(const SampleFile& sample)
{
    std::array<Outcome, 2> outcomes;
    OnAnotherThread([&] {
        TestStream stream{sample.content};
        const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        outcomes[0] = OutcomeOf([&] { return Initialize(decoder, stream); });
        const ComPtr<IPropertyStore> store = NewPropertyStore();
        outcomes[1] = OutcomeOf([&] { return Initialize(store, &stream); });
    });
    return outcomes;
}

void ExpectOpened(const SampleFile& sample)
{
    SCOPED_TRACE(sample.name);
    for (const Outcome& outcome : Open(sample))
    {
        EXPECT_EQ(outcome.result, S_OK);
        EXPECT_EQ(outcome.exception, "");
    }
}

} // namespace

TEST(BlockedStream, HoldsUpNoOtherThread)
{
    const std::vector<SampleFile> samples = SampleFiles();
    for (const SampleFile& blocked : samples)
    {
        SCOPED_TRACE(blocked.name);
        const BlockedThread thread{blocked};
        for (const SampleFile& sample : samples)
        {
            if (!IsHdf(blocked) || !IsHdf(sample))
                ExpectOpened(sample);
        }
    }
}

TEST(BlockedStream, MakesOtherThreadsGiveUpIfBothReadHdf)
{
    const std::vector<SampleFile> samples = SampleFiles();
    const SampleFile& sample = *std::ranges::find_if(samples, IsHdf);
    const std::vector<std::string> timeout = {"[Lumora] HDF: Mutex timeout"};
    {
        const BlockedThread thread{sample};
        const auto [decoding, properties] = Open(sample);
        EXPECT_EQ(decoding, (Outcome{.result = WINCODEC_ERR_WRONGSTATE, .lines = timeout}));
        EXPECT_EQ(properties, (Outcome{.result = E_FAIL, .lines = timeout}));
    }
    ExpectOpened(sample);
}
