#include "core/RawImage.h"
#include "support/files/MrcFile.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

// Streams that fail at any of their calls while an image is opened.

using namespace Tav::Imaging::RawImage;

namespace {

Bytes FourPixels()
{
    return MrcFile().Size(4, 1, 1).Mode(1).Numbers<int16_t>({-32768, -32512, -32511, 32767}).Build();
}

/// How an opening ends, in one text: "true", "false", or the exception's type and words.
std::string Outcome(RawImage& image, IStream* stream, uint32_t readMode)
{
    try
    {
        return image.Open(stream, readMode, 0) ? "true" : "false";
    }
    catch (const std::exception& error)
    {
        const bool isRuntimeError = typeid(error) == typeid(std::runtime_error);
        return std::string{isRuntimeError ? "runtime_error: " : "another exception: "} + error.what();
    }
}

/// Opens a stream with faults, in a holder that has held another image, and expects this outcome and these
/// lines. A failure leaves nothing behind: neither a reader nor a reference nor anything in the way of the
/// next opening.
void ExpectOutcome(TestStream& stream, uint32_t readMode, const std::string& outcome, const Lines& lines)
{
    TestStream good{FourPixels()};
    RawImage image;
    ASSERT_TRUE(image.Open(&good, readModeFrame, 0));

    DiagnosticLines diagnostics;
    EXPECT_EQ(Outcome(image, &stream, readMode), outcome);
    EXPECT_EQ(diagnostics.Take(), lines);
    EXPECT_EQ(stream.references, 0U);

    stream.faults = {};
    EXPECT_TRUE(image.Open(&stream, readModeFrame, 0));
    ASSERT_NE(image.Reader(), nullptr);
    EXPECT_EQ(image.Reader()->displayPixels, (Bytes{0, 0, 1, 255}));
    EXPECT_EQ(stream.references, 0U);
}

struct Row
{
    std::string outcome;
    Lines lines;
};

const Row refusal = {"false", {}};
const Row success = {"true", {}};
const Row noFrame = {"false", {"[Lumora] Failed to read the image data into memory"}};
const Row noSize = {"runtime_error: Could not get file size", {}};
const Row noBytes = {"runtime_error: Could not read file", {}};

/// The outcomes when the first call fails, the second and so on, until none does.
void ExpectOutcomes(FailingStreamCall failingCall, uint32_t readMode, const std::vector<Row>& rows)
{
    for (size_t i = 0; i < rows.size(); ++i)
    {
        SCOPED_TRACE(testing::Message() << "call " << i + 1);
        StreamFaults faults;
        faults.*failingCall = static_cast<uint32_t>(i + 1);
        TestStream stream{FourPixels(), faults};
        ExpectOutcome(stream, readMode, rows[i].outcome, rows[i].lines);
    }
}

TEST(RawImageFaults, OfStatRefuseThrowOrFailTheFrame)
{
    // Opening, identification, the header's reader, the frame.
    ExpectOutcomes(&StreamFaults::failStatAt, readModeFrame, {refusal, refusal, noSize, noFrame, success});
    ExpectOutcomes(&StreamFaults::failStatAt, readModeHeader, {refusal, refusal, noSize, success});
}

TEST(RawImageFaults, OfSeekRefuseThrowOrFailTheFrame)
{
    ExpectOutcomes(&StreamFaults::failSeekAt, readModeFrame, {refusal, noBytes, noFrame, success});
    ExpectOutcomes(&StreamFaults::failSeekAt, readModeHeader, {refusal, noBytes, success});
}

TEST(RawImageFaults, OfReadRefuseThrowOrFailTheFrame)
{
    ExpectOutcomes(&StreamFaults::failReadAt, readModeFrame, {refusal, noBytes, noFrame, success});
    ExpectOutcomes(&StreamFaults::failReadAt, readModeHeader, {refusal, noBytes, success});
}

TEST(RawImageFaults, LeaveNoReaderBehind)
{
    for (uint32_t call = 1; call <= 4; ++call)
    {
        SCOPED_TRACE(call);
        TestStream stream{FourPixels(), {.failStatAt = call}};
        RawImage image;
        EXPECT_NE(Outcome(image, &stream, readModeFrame), "true");
        EXPECT_EQ(image.Reader(), nullptr);
    }
}

TEST(RawImageFaults, OfShortReads)
{
    // The file has 1032 bytes: 64 are read to identify it, all for the header's window, 8 for the frame.
    for (const uint32_t longest : {0U, 1U, 63U})
    {
        TestStream stream{FourPixels(), {.longestRead = longest}};
        ExpectOutcome(stream, readModeFrame, refusal.outcome, refusal.lines);
    }
    for (const uint32_t longest : {64U, 1023U, 1031U})
    {
        TestStream stream{FourPixels(), {.longestRead = longest}};
        ExpectOutcome(stream, readModeFrame, noBytes.outcome, noBytes.lines);
    }
    TestStream stream{FourPixels(), {.longestRead = 1032}};
    ExpectOutcome(stream, readModeFrame, success.outcome, success.lines);
}

TEST(RawImageFaults, OfCountsThatAreNotTrue)
{
    for (const int32_t extra : {-1, 1, 1000000})
    {
        TestStream stream{FourPixels(), {.extraCountReported = extra}};
        ExpectOutcome(stream, readModeFrame, refusal.outcome, refusal.lines);
    }
}

TEST(RawImageFaults, OfSizesThatAreNotTrue)
{
    for (const uint64_t size : {uint64_t{0}, uint64_t{63}})
    {
        TestStream stream{FourPixels(), {.reportedSize = size}};
        ExpectOutcome(stream, readModeFrame, refusal.outcome, refusal.lines);
    }
    // The header is cut before its last words that must be there, or before its frame.
    TestStream cutHeader{FourPixels(), {.reportedSize = 64}};
    ExpectOutcome(cutHeader, readModeFrame, refusal.outcome, refusal.lines);
    TestStream cutFrame{FourPixels(), {.reportedSize = 200}};
    ExpectOutcome(cutFrame, readModeFrame, noFrame.outcome, noFrame.lines);
    // The header's window reaches beyond the true end.
    for (const uint64_t size : {uint64_t{1033}, uint64_t{1} << 32, uint64_t{1} << 63, UINT64_MAX})
    {
        TestStream stream{FourPixels(), {.reportedSize = size}};
        ExpectOutcome(stream, readModeFrame, noBytes.outcome, noBytes.lines);
    }
}

/// Answers Stat as `statResult` says, whatever its other calls answer.
class StatStream final : public TestStream
{
public:
    StatStream(StreamFaults streamFaults, HRESULT result)
        : TestStream(FourPixels(), streamFaults), statResult(result)
    {}

    HRESULT STDMETHODCALLTYPE Stat(STATSTG* statistics, DWORD flags) override
    {
        const HRESULT answer = TestStream::Stat(statistics, flags);
        return FAILED(answer) ? answer : statResult;
    }

private:
    HRESULT statResult;
};

TEST(RawImageFaults, OfOtherSuccessCodesCountForTheFirstStatAlone)
{
    StatStream odd{{}, S_FALSE};
    RawImage image;
    EXPECT_FALSE(image.Open(&odd, readModeFrame, 0));
    EXPECT_EQ(image.Reader(), nullptr);
    EXPECT_EQ(odd.readCalls, 0U);

    StatStream even{{.success = S_FALSE}, S_OK};
    EXPECT_TRUE(image.Open(&even, readModeFrame, 0));
    EXPECT_EQ(even.references, 0U);
}

} // namespace
