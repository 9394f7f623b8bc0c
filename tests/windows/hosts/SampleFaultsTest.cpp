#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/LumoraModule.h"
#include "windows/clients/Outcome.h"
#include "windows/clients/PropertyStoreClient.h"
#include "windows/hosts/SampleFiles.h"
#include "windows/support/HostileStream.h"
#include "windows/support/ModuleHeap.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

// Every call of the stream goes wrong once, in every way, for each format: with each call more of the file is
// known. The tests of one stack name the outcome of each call; here the outcome must only be an honest one.

namespace {

/// What a fault does to a call. A host must not be told that a file was opened if the fault hid a part of it.
enum class Effect
{
    /// The call fails, or says that it delivered another number of bytes than was asked for.
    HidesBytes,
    /// The call tells something else, which may be all right.
    ChangesFacts,
};

/// The member of a stream that counts the calls of a kind.
using CallCount = uint32_t TestStream::*;

/// One way in which the n-th call of a kind goes wrong.
struct Fault
{
    const char* name;
    Effect effect;
    CallCount calls;
    std::function<void(HostileStream& stream, uint32_t call)> arm;
};

Fault SizeFault(const char* name, std::function<uint64_t(uint64_t size)> wrongSize)
{
    return {name, Effect::ChangesFacts, &TestStream::statCalls,
            [wrongSize = std::move(wrongSize)](HostileStream& stream, uint32_t call) {
                stream.wrongStat = call;
                stream.wrongSize = wrongSize(stream.bytes.size());
            }};
}

Fault WrongRead(const char* name, ReadFault fault)
{
    return {name, Effect::HidesBytes, &TestStream::readCalls, [fault](HostileStream& stream, uint32_t call) {
                stream.wrongRead = call;
                stream.readFault = fault;
            }};
}

/// The stream becomes another before the n-th read.
Fault Change(const char* name, std::function<void(Bytes& bytes)> change)
{
    return {name, Effect::ChangesFacts, &TestStream::readCalls,
            [change = std::move(change)](HostileStream& stream, uint32_t call) {
                stream.changedRead = call;
                stream.changedBytes = stream.bytes;
                change(stream.changedBytes);
            }};
}

void Invert(Bytes& bytes)
{
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(~byte);
}

std::vector<Fault> Faults()
{
    return {
        {"size fails", Effect::HidesBytes, &TestStream::statCalls,
         [](HostileStream& stream, uint32_t call) { stream.faults.failStatAt = call; }},
        {"seek fails", Effect::HidesBytes, &TestStream::seekCalls,
         [](HostileStream& stream, uint32_t call) { stream.faults.failSeekAt = call; }},
        WrongRead("read fails", ReadFault::Fails),
        WrongRead("one byte less", ReadFault::DeliversOneByteLess),
        WrongRead("no bytes", ReadFault::DeliversNothing),
        WrongRead("one byte more", ReadFault::ReportsOneByteMore),
        WrongRead("far more bytes", ReadFault::ReportsFarMore),
        WrongRead("no count", ReadFault::ReportsNoCount),
        SizeFault("size 0", [](uint64_t) { return 0; }),
        SizeFault("half the size", [](uint64_t size) { return size / 2; }),
        SizeFault("size less 1", [](uint64_t size) { return size - 1; }),
        SizeFault("size and 1", [](uint64_t size) { return size + 1; }),
        SizeFault("size of 1 GiB", [](uint64_t) { return uint64_t{1} << 30; }),
        SizeFault("largest size", [](uint64_t) { return UINT64_MAX; }),
        Change("emptied", [](Bytes& bytes) { bytes.clear(); }),
        Change("cut", [](Bytes& bytes) { bytes.resize(bytes.size() / 2); }),
        Change("grown", [](Bytes& bytes) { bytes.resize(bytes.size() * 2, 0xFF); }),
        Change("zeroed", [](Bytes& bytes) { bytes.assign(bytes.size(), 0); }),
        Change("inverted", Invert),
    };
}

/// True for what the decoder may answer when a stream goes wrong.
bool IsHonest(const Outcome& outcome)
{
    return outcome.result == WINCODEC_ERR_WRONGSTATE ||
           outcome.exception == "runtime_error: Could not read file" ||
           outcome.exception == "runtime_error: Could not get file size";
}

/// No sample takes so many calls; a use that reaches this number would never end.
constexpr uint32_t mostCalls = 1000;

/// A fault of one call of the stream over a sample.
class FaultyStream : public HostileStream
{
public:
    FaultyStream(const Bytes& sample, const Fault& fault, uint32_t call)
        : HostileStream(sample), calls(this->*fault.calls), faultyCall(call), effect(fault.effect)
    {
        fault.arm(*this, call);
    }

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* countRead) override
    {
        EXPECT_LT(readCalls, mostCalls);
        return readCalls < mostCalls ? HostileStream::Read(buffer, count, countRead) : STG_E_READFAULT;
    }

    [[nodiscard]] bool IsMet() const { return calls >= faultyCall; }

    /// Expects that a file with hidden bytes is not taken for opened.
    void ExpectOpened(bool isOpen, const Outcome& outcome) const
    {
        if (!IsMet())
        {
            EXPECT_TRUE(isOpen) << outcome;
        }
        else if (effect == Effect::HidesBytes)
        {
            EXPECT_FALSE(isOpen);
        }
    }

private:
    const uint32_t& calls;
    uint32_t faultyCall;
    Effect effect;
};

/// Opens the stream, and asks for its last frame. Whatever comes of it, a good stream must show its picture
/// afterwards: to the same decoder if that has none yet, else to another.
void Decode(FaultyStream& stream, const Bytes& sample, const Bytes& picture)
{
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    const Outcome outcome = OutcomeOf([&] { return Initialize(decoder, stream); });
    const bool isOpen = outcome.result == S_OK && outcome.exception.empty();
    EXPECT_TRUE(isOpen || IsHonest(outcome)) << outcome;
    stream.ExpectOpened(isOpen, outcome);
    if (isOpen)
    {
        static_cast<void>(Picture(Frame(decoder, 0)));
        ComPtr<IWICBitmapFrameDecode> frame;
        const UINT lastIndex = FrameCount(decoder) - 1;
        const Outcome last = OutcomeOf([&] { return decoder->GetFrame(lastIndex, frame.Put()); });
        EXPECT_TRUE(frame ? last.result == S_OK : IsHonest(last)) << last;
        if (frame)
            static_cast<void>(Picture(frame));
        decoder = NewDecoder();
    }
    TestStream goodStream{sample};
    EXPECT_EQ(Initialize(decoder, goodStream), S_OK);
    EXPECT_TRUE(Picture(Frame(decoder, 0)) == picture);
    decoder.Reset();
    EXPECT_EQ(goodStream.references, 0U);
}

/// The same for the properties.
void ReadProperties(FaultyStream& stream, const Bytes& sample, const std::array<PropertyValue, 8>& values)
{
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    const Outcome outcome = OutcomeOf([&] { return Initialize(store, &stream); });
    EXPECT_EQ(outcome.exception, "");
    EXPECT_TRUE(outcome.result == S_OK || outcome.result == E_FAIL) << outcome;
    stream.ExpectOpened(outcome.result == S_OK, outcome);
    static_cast<void>(ValuesOf(store));
    TestStream goodStream{sample};
    EXPECT_EQ(Initialize(store, &goodStream), S_OK);
    EXPECT_EQ(ValuesOf(store), values);
    EXPECT_EQ(goodStream.references, 0U);
}

/// Uses the sample again and again, and lets another call go wrong each time, until there are no more calls.
void ForEachCall(const Bytes& sample, const Fault& fault,
                 const std::function<void(FaultyStream& stream)>& use)
{
    for (uint32_t call = 1; call < mostCalls; ++call)
    {
        SCOPED_TRACE(testing::Message() << "call " << call);
        FaultyStream stream{sample, fault, call};
        use(stream);
        EXPECT_EQ(stream.references, 0U);
        if (!stream.IsMet())
            return;
    }
    ADD_FAILURE() << "the calls come to no end";
}

/// Makes an exception leave the module: the run-time library keeps memory for those of this thread.
void PassAnException()
{
    TestStream stream{GrayStack(1), {.failReadAt = 2}};
    EXPECT_NE(OutcomeOf([&] { return Initialize(NewDecoder(), stream); }).exception, "");
}

/// Does that with every fault. The module must hold no more memory at the end than after the first sample.
void ForEachFaultOfEachSample(
    const std::function<std::function<void(FaultyStream& stream)>(const Bytes& sample)>& use)
{
    const ModuleHeap heap{LumoraModule::Shared().handle};
    PassAnException();
    size_t held = 0;
    for (const SampleFile& sample : SampleFiles())
    {
        SCOPED_TRACE(sample.name);
        const auto useOfSample = use(sample.content);
        for (const Fault& fault : Faults())
        {
            SCOPED_TRACE(fault.name);
            ForEachCall(sample.content, fault, useOfSample);
        }
        if (held == 0)
            held = heap.BlocksHeld();
        EXPECT_EQ(heap.BlocksHeld(), held);
    }
}

} // namespace

TEST(SampleFaults, EndHonestlyForTheDecoder)
{
    ForEachFaultOfEachSample([](const Bytes& sample) {
        TestStream stream{sample};
        const Bytes picture = Picture(Frame(NewDecoder(stream), 0));
        return [&sample, picture](FaultyStream& faulty) { Decode(faulty, sample, picture); };
    });
}

TEST(SampleFaults, EndHonestlyForThePropertyHandler)
{
    ForEachFaultOfEachSample([](const Bytes& sample) {
        TestStream stream{sample};
        const ComPtr<IPropertyStore> store = NewPropertyStore();
        EXPECT_EQ(Initialize(store, &stream), S_OK);
        const std::array<PropertyValue, 8> values = ValuesOf(store);
        return [&sample, values](FaultyStream& faulty) { ReadProperties(faulty, sample, values); };
    });
}
