#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/Outcome.h"
#include "windows/clients/PropertyStoreClient.h"
#include "windows/support/HostileStream.h"
#include "windows/support/OtherThread.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

const Outcome opened;
const Outcome refusedSilently{.result = WINCODEC_ERR_WRONGSTATE};
const Outcome pixelsMissing{.result = WINCODEC_ERR_WRONGSTATE,
                            .lines = {"[Lumora] Failed to read the image data into memory"}};
const Outcome sizeUnknown{.exception = "runtime_error: Could not get file size"};
const Outcome fileUnreadable{.exception = "runtime_error: Could not read file"};

const Outcome storeFails{.result = E_FAIL};
const Outcome storeCatches{
    .result = E_FAIL,
    .lines = {"[Lumora] Exception in PropertyStore::Initialize( IStream *pStream, DWORD grfMode )"}};

/// What becomes of decoding a frame and of reading properties when one call of the stream fails. Properties
/// need fewer calls: they ask for no pixels.
struct FailingCall
{
    const char* purpose;
    StreamFaults faults;
    Outcome decoding;
    Outcome properties;
};

const std::vector<FailingCall> failingCalls = {
    {"size, to open the file", {.failStatAt = 1}, refusedSilently, storeFails},
    {"size, to identify the file", {.failStatAt = 2}, refusedSilently, storeFails},
    {"size, for the reader", {.failStatAt = 3}, sizeUnknown, storeCatches},
    {"size, to read the pixels", {.failStatAt = 4}, pixelsMissing, opened},
    {"no further size", {.failStatAt = 5}, opened, opened},
    {"seek, to identify the file", {.failSeekAt = 1}, refusedSilently, storeFails},
    {"seek, for the reader", {.failSeekAt = 2}, fileUnreadable, storeCatches},
    {"seek, to read the pixels", {.failSeekAt = 3}, pixelsMissing, opened},
    {"no further seek", {.failSeekAt = 4}, opened, opened},
    {"read, to identify the file", {.failReadAt = 1}, refusedSilently, storeFails},
    {"read, for the reader", {.failReadAt = 2}, fileUnreadable, storeCatches},
    {"read, of the pixels", {.failReadAt = 3}, pixelsMissing, opened},
    {"no further read", {.failReadAt = 4}, opened, opened},
};

/// What becomes of them when the n-th read does not do what it should.
const std::vector<Outcome> decodingByWrongRead = {refusedSilently, fileUnreadable, pixelsMissing, opened};
const std::vector<Outcome> propertiesByWrongRead = {storeFails, storeCatches, opened};

constexpr ReadFault readFaults[] = {
    ReadFault::Fails,           ReadFault::DeliversOneByteLess,
    ReadFault::DeliversNothing, ReadFault::ReportsOneByteMore,
    ReadFault::ReportsFarMore,  ReadFault::ReportsNoCount,
};

/// The same faults for a stream that has been called before.
StreamFaults FromNowOn(StreamFaults faults, const TestStream& stream)
{
    if (faults.failStatAt)
        faults.failStatAt += stream.statCalls;
    if (faults.failSeekAt)
        faults.failSeekAt += stream.seekCalls;
    if (faults.failReadAt)
        faults.failReadAt += stream.readCalls;
    return faults;
}

/// Opens the stream with a new decoder and expects an outcome. Whatever it is, the decoder must be of use
/// to another thread afterwards and let go of everything in the end.
void ExpectDecoding(TestStream& stream, const Outcome& expected)
{
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    EXPECT_EQ(OutcomeOf([&] { return Initialize(decoder, stream); }), expected);
    EXPECT_EQ(stream.references, 1u) << "the decoder's, and no reader's";

    TestStream goodStream{GrayStack(2)};
    OnAnotherThread([&] {
        if (expected == opened)
        {
            EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[0]);
            return;
        }
        EXPECT_EQ(FrameRefusal(decoder, 0), WINCODEC_ERR_FRAMEMISSING);
        EXPECT_EQ(Initialize(decoder, goodStream), S_OK);
        EXPECT_EQ(stream.references, 0u);
        EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
    });
    decoder.Reset();
    EXPECT_EQ(stream.references, 0u);
    EXPECT_EQ(goodStream.references, 0u);
}

/// Asks for the second frame of an opened stream that has been made to misbehave, and expects an outcome. The
/// first frame must stay at hand, and the second be there once the stream has recovered.
void ExpectNextFrame(const ComPtr<IWICBitmapDecoder>& decoder, HostileStream& stream, const Outcome& expected)
{
    const ComPtr<IWICBitmapFrameDecode> first = Frame(decoder, 0);
    IWICBitmapFrameDecode* second = Untouchable<IWICBitmapFrameDecode>();
    EXPECT_EQ(OutcomeOf([&] { return decoder->GetFrame(1, &second); }), expected);
    if (expected == opened)
    {
        EXPECT_EQ(Picture(ComPtr<IWICBitmapFrameDecode>::Adopt(second)), grayPictures[1]);
        return;
    }
    EXPECT_EQ(second, Untouchable<IWICBitmapFrameDecode>());
    EXPECT_EQ(stream.references, 1u);
    OnAnotherThread([&] {
        const uint32_t calls = Calls(stream);
        EXPECT_EQ(Frame(decoder, 0).Get(), first.Get());
        EXPECT_EQ(Calls(stream), calls);
        stream.faults = {};
        stream.wrongRead = 0;
        EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
    });
}

void ExpectProperties(TestStream& stream, const Outcome& expected)
{
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    EXPECT_EQ(OutcomeOf([&] { return Initialize(store, &stream); }), expected);
    EXPECT_EQ(stream.references, 0u);
    EXPECT_EQ(ValueOf(store, servedKeys[2]),
              expected == opened ? PropertyValue{L"4 x 2 x 2"} : PropertyValue{});
}

} // namespace

TEST(HostileStream, EndsOpeningAtEachCallThatFails)
{
    for (const FailingCall& call : failingCalls)
    {
        SCOPED_TRACE(call.purpose);
        TestStream stream{GrayStack(2), call.faults};
        ExpectDecoding(stream, call.decoding);
    }
}

TEST(HostileStream, EndsTheNextFrameAtEachCallThatFails)
{
    for (const FailingCall& call : failingCalls)
    {
        SCOPED_TRACE(call.purpose);
        HostileStream stream{GrayStack(2)};
        const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
        stream.faults = FromNowOn(call.faults, stream);
        ExpectNextFrame(decoder, stream, call.decoding);
    }
}

TEST(HostileStream, EndsPropertiesAtEachCallThatFails)
{
    for (const FailingCall& call : failingCalls)
    {
        SCOPED_TRACE(call.purpose);
        TestStream stream{GrayStack(2), call.faults};
        ExpectProperties(stream, call.properties);
    }
}

TEST(HostileStream, EndsEverythingAtEachReadThatDoesNotDoWhatItSays)
{
    for (const ReadFault fault : readFaults)
    {
        SCOPED_TRACE(testing::Message() << "read fault " << static_cast<int>(fault));
        for (uint32_t i = 0; i < decodingByWrongRead.size(); ++i)
        {
            SCOPED_TRACE(testing::Message() << "read " << i + 1);
            HostileStream stream{GrayStack(2)};
            stream.wrongRead = i + 1;
            stream.readFault = fault;
            ExpectDecoding(stream, decodingByWrongRead[i]);

            HostileStream nextStream{GrayStack(2)};
            const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(nextStream);
            nextStream.wrongRead = nextStream.readCalls + i + 1;
            nextStream.readFault = fault;
            ExpectNextFrame(decoder, nextStream, decodingByWrongRead[i]);
        }
        for (uint32_t i = 0; i < propertiesByWrongRead.size(); ++i)
        {
            SCOPED_TRACE(testing::Message() << "read for properties " << i + 1);
            HostileStream stream{GrayStack(2)};
            stream.wrongRead = i + 1;
            stream.readFault = fault;
            ExpectProperties(stream, propertiesByWrongRead[i]);
        }
    }
}

TEST(HostileStream, NeverDeliversEnoughInOneRead)
{
    for (const uint32_t longest : {0u, 1u, 63u})
    {
        TestStream stream{GrayStack(2), {.longestRead = longest}};
        ExpectDecoding(stream, refusedSilently);
        ExpectProperties(stream, storeFails);
    }
    for (const uint32_t longest : {64u, 1024u, 1024u + 31})
    {
        TestStream stream{GrayStack(2), {.longestRead = longest}};
        ExpectDecoding(stream, fileUnreadable);
        ExpectProperties(stream, storeCatches);
    }
    TestStream stream{GrayStack(2), {.longestRead = 1024 + 32}};
    ExpectDecoding(stream, opened);
}

TEST(HostileStream, MaySucceedInItsOwnWayOnceItHasBeenOpened)
{
    // Only the first size must come with a plain success.
    for (uint32_t call = 1; call <= 4; ++call)
    {
        SCOPED_TRACE(call);
        HostileStream statStream{GrayStack(2)};
        statStream.falseStat = call;
        ExpectDecoding(statStream, call == 1 ? refusedSilently : opened);
        HostileStream seekStream{GrayStack(2)};
        seekStream.falseSeek = call;
        ExpectDecoding(seekStream, opened);
        HostileStream readStream{GrayStack(2)};
        readStream.falseRead = call;
        ExpectDecoding(readStream, opened);
    }
    HostileStream statStream{GrayStack(2)};
    statStream.falseStat = 1;
    ExpectProperties(statStream, storeFails);
    TestStream falseStream{GrayStack(2), {.success = S_FALSE}};
    ExpectDecoding(falseStream, refusedSilently);
}

TEST(HostileStream, MayNotClaimBytesThatItLacks)
{
    for (const uint64_t claimed : {uint64_t{1024 + 33}, uint64_t{0x400000}, uint64_t{1} << 32,
                                   uint64_t{1} << 40, uint64_t{1} << 63, UINT64_MAX})
    {
        SCOPED_TRACE(claimed);
        TestStream stream{GrayStack(2), {.reportedSize = claimed}};
        ExpectDecoding(stream, fileUnreadable);
        ExpectProperties(stream, storeCatches);
    }
}

TEST(HostileStream, IsReadOnlyAsFarAsItClaims)
{
    const Outcome lessFrames{
        .lines = {"[Lumora] MRC: The file contains less frames than specified in the header"}};
    const Outcome noFrame{.result = WINCODEC_ERR_WRONGSTATE,
                          .lines = {"[Lumora] MRC: No complete frame is present in the file"}};
    struct ClaimedSize
    {
        uint64_t size;
        Outcome outcome;
    };
    for (const ClaimedSize& claimed : {
             ClaimedSize{1024 + 32, opened},
             ClaimedSize{1024 + 31, lessFrames},
             ClaimedSize{1024 + 16, lessFrames},
             ClaimedSize{1024 + 15, noFrame},
             ClaimedSize{1024, noFrame},
             // The reader stops where its next field would end beyond the stream.
             ClaimedSize{95, refusedSilently},
             ClaimedSize{64, refusedSilently},
             ClaimedSize{63, refusedSilently},
             ClaimedSize{0, refusedSilently},
         })
    {
        SCOPED_TRACE(claimed.size);
        TestStream stream{GrayStack(2), {.reportedSize = claimed.size}};
        ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        EXPECT_EQ(OutcomeOf([&] { return Initialize(decoder, stream); }), claimed.outcome);
        decoder.Reset();
        EXPECT_EQ(stream.references, 0u);
    }
}

TEST(HostileStream, MayShrinkWhileItIsOpened)
{
    // A file cut between the look at its header and the look at its pixels.
    HostileStream stream{GrayStack(2)};
    stream.wrongStat = 4;
    stream.wrongSize = 1024 + 15;
    ExpectDecoding(stream, pixelsMissing);

    // A file that seemed too large for a moment, without consequence.
    HostileStream grown{GrayStack(2)};
    grown.wrongStat = 1;
    grown.wrongSize = UINT64_MAX;
    ExpectDecoding(grown, opened);
}

TEST(HostileStream, MayPromiseFramesBehindItsEnd)
{
    // One section of 4 MiB where the header names three. The size that is claimed would hold them, and the
    // first 4 MiB, all that the reader looks at, are there.
    const std::vector<uint8_t> file = MrcFile()
                                          .Size(2048, 2048, 3)
                                          .Mode(0)
                                          .Version(20140)
                                          .Samples(std::vector<uint8_t>(size_t{4} << 20))
                                          .Build();
    for (const uint64_t claimed : {uint64_t{1024 + (12 << 20)}, uint64_t{1} << 40, UINT64_MAX})
    {
        SCOPED_TRACE(claimed);
        TestStream stream{file, {.reportedSize = claimed}};
        const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        EXPECT_EQ(OutcomeOf([&] { return Initialize(decoder, stream); }), opened);
        EXPECT_EQ(FrameCount(decoder), 3u);
        for (const UINT index : {1u, 2u})
        {
            IWICBitmapFrameDecode* frame = Untouchable<IWICBitmapFrameDecode>();
            EXPECT_EQ(OutcomeOf([&] { return decoder->GetFrame(index, &frame); }), pixelsMissing);
            EXPECT_EQ(frame, Untouchable<IWICBitmapFrameDecode>());
        }
        EXPECT_EQ(stream.references, 1u);
    }
}
