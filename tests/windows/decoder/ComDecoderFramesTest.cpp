#include "support/gray/GrayStack.h"
#include "support/streams/DiagnosticLines.h"
#include "windows/clients/DecoderClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::vector<uint8_t> noise(100, 'x');

} // namespace

TEST(DecoderFrames, AreAllThereWithTheirOwnPictures)
{
    TestStream stream{GrayStack(3)};
    DiagnosticLines diagnostics;
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    EXPECT_EQ(FrameCount(decoder), 3u);
    for (const UINT index : {0u, 1u, 2u, 1u, 0u, 2u, 2u})
        EXPECT_EQ(Picture(Frame(decoder, index)), grayPictures[index]) << index;
    EXPECT_THAT(diagnostics.Take(), IsEmpty());
}

TEST(DecoderFrames, AreMissingFromTheCountOn)
{
    TestStream stream{GrayStack(3)};
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    const uint32_t calls = Calls(stream);
    DiagnosticLines diagnostics;
    for (const UINT index : {3u, 4u, 0x80000000u, UINT_MAX})
        EXPECT_EQ(FrameRefusal(decoder, index), WINCODEC_ERR_FRAMEMISSING) << index;
    EXPECT_EQ(Calls(stream), calls) << "no look at the stream is needed";
    EXPECT_THAT(diagnostics.Take(), IsEmpty());
}

TEST(DecoderFrames, AreCountedByWhatTheFileHolds)
{
    // Room for two sections where the header promises five.
    std::vector<uint8_t> cut = GrayStack(2);
    cut[8] = 5;
    TestStream cutStream{cut};
    DiagnosticLines diagnostics;
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(cutStream);
    EXPECT_THAT(diagnostics.Take(),
                ElementsAre("[Lumora] MRC: The file contains less frames than specified in the header"));
    EXPECT_EQ(FrameCount(decoder), 2u);
    EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
    EXPECT_EQ(FrameRefusal(decoder, 2), WINCODEC_ERR_FRAMEMISSING);

    // Three sections where the header was never completed.
    std::vector<uint8_t> uncounted = GrayStack(3);
    uncounted[8] = 0;
    TestStream uncountedStream{uncounted};
    EXPECT_EQ(FrameCount(NewDecoder(uncountedStream)), 3u);
}

TEST(DecoderFrames, StartDecodedAsTheFirst)
{
    TestStream stream{GrayStack(2)};
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    const uint32_t calls = Calls(stream);
    const ComPtr<IWICBitmapFrameDecode> once = Frame(decoder, 0);
    const ComPtr<IWICBitmapFrameDecode> again = Frame(decoder, 0);
    EXPECT_EQ(once.Get(), again.Get());
    EXPECT_EQ(Calls(stream), calls);
}

TEST(DecoderFrames, AreKeptOneAtATime)
{
    TestStream stream{GrayStack(2)};
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    const ComPtr<IWICBitmapFrameDecode> first = Frame(decoder, 0);

    const uint32_t callsForTheFirst = Calls(stream);
    const ComPtr<IWICBitmapFrameDecode> second = Frame(decoder, 1);
    const uint32_t callsForBoth = Calls(stream);
    EXPECT_EQ(callsForBoth, 2 * callsForTheFirst) << "a frame costs what the first one cost";
    EXPECT_EQ(Frame(decoder, 1).Get(), second.Get());
    EXPECT_EQ(Calls(stream), callsForBoth);

    const ComPtr<IWICBitmapFrameDecode> firstAgain = Frame(decoder, 0);
    EXPECT_NE(firstAgain.Get(), first.Get());
    EXPECT_EQ(Calls(stream), 3 * callsForTheFirst);
    EXPECT_EQ(Picture(firstAgain), grayPictures[0]);
    EXPECT_EQ(Picture(first), grayPictures[0]);
    EXPECT_EQ(Picture(second), grayPictures[1]);
}

TEST(DecoderFrames, AreHeldByTheDecoderWhileTheyAreTheCurrentOne)
{
    TestStream stream{GrayStack(2)};
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    ComPtr<IWICBitmapFrameDecode> first = Frame(decoder, 0);
    EXPECT_EQ(first->AddRef(), 3u);
    EXPECT_EQ(first->Release(), 2u);

    ComPtr<IWICBitmapFrameDecode> second = Frame(decoder, 1);
    EXPECT_EQ(first.Detach()->Release(), 0u) << "the decoder has let go of the first frame";

    EXPECT_EQ(decoder.Detach()->Release(), 0u) << "no frame keeps its decoder";
    EXPECT_EQ(second.Detach()->Release(), 0u);
}

TEST(DecoderFrames, StayAsTheyAreWhenTheNextOneCannotBeDecoded)
{
    TestStream stream{GrayStack(3)};
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    const ComPtr<IWICBitmapFrameDecode> second = Frame(decoder, 1);

    // The file is cut behind the decoder's back, within its second section.
    stream.bytes.resize(1024 + 16 + 8);
    DiagnosticLines diagnostics;
    EXPECT_EQ(FrameRefusal(decoder, 2), WINCODEC_ERR_WRONGSTATE);
    EXPECT_THAT(diagnostics.Take(),
                ElementsAre("[Lumora] MRC: The file contains less frames than specified in the header",
                            "[Lumora] MRC: Frame index is out of range"));
    EXPECT_EQ(FrameCount(decoder), 3u);

    const uint32_t calls = Calls(stream);
    EXPECT_EQ(Frame(decoder, 1).Get(), second.Get());
    EXPECT_EQ(Calls(stream), calls);
    EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[0]) << "what is still there can be decoded";
}

TEST(DecoderFrames, ComeFromTheStreamOfARefusedSecondInitialize)
{
    // The second stream holds the first one's pictures in another order.
    std::vector<uint8_t> swapped = GrayStack(3);
    std::swap_ranges(swapped.begin() + 1024, swapped.begin() + 1040, swapped.begin() + 1056);
    TestStream firstStream{GrayStack(2)};
    TestStream secondStream{swapped};
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder(firstStream);

    EXPECT_EQ(Initialize(decoder, secondStream), WINCODEC_ERR_WRONGSTATE);
    EXPECT_EQ(Calls(secondStream), 0u) << "it is kept, not read";
    EXPECT_EQ(firstStream.references, 0u);
    EXPECT_EQ(secondStream.references, 1u);
    EXPECT_EQ(FrameCount(decoder), 2u) << "the count stays that of the first stream";
    EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[0]) << "and so does the frame at hand";
    EXPECT_EQ(Calls(secondStream), 0u);

    EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
    EXPECT_GT(Calls(secondStream), 0u);
    EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[2]) << "now from the second stream";
    EXPECT_EQ(FrameRefusal(decoder, 2), WINCODEC_ERR_FRAMEMISSING);
    decoder.Reset();
    EXPECT_EQ(secondStream.references, 0u);
}

TEST(DecoderFrames, CallTheFrameAtHandTheFirstAfterASecondInitialize)
{
    TestStream firstStream{GrayStack(3)};
    TestStream secondStream{GrayStack(3)};
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(firstStream);
    const ComPtr<IWICBitmapFrameDecode> second = Frame(decoder, 1);

    EXPECT_EQ(Initialize(decoder, secondStream), WINCODEC_ERR_WRONGSTATE);
    EXPECT_EQ(Frame(decoder, 0).Get(), second.Get());
    EXPECT_EQ(Calls(secondStream), 0u);
    const ComPtr<IWICBitmapFrameDecode> decodedAgain = Frame(decoder, 1);
    EXPECT_NE(decodedAgain.Get(), second.Get());
    EXPECT_EQ(Picture(decodedAgain), grayPictures[1]);
}

TEST(DecoderFrames, CannotBeDecodedFromASecondStreamThatLacksThem)
{
    TestStream firstStream{GrayStack(3)};
    TestStream noiseStream{noise};
    TestStream shorterStream{GrayStack(2)};
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(firstStream);

    EXPECT_EQ(Initialize(decoder, noiseStream), WINCODEC_ERR_WRONGSTATE);
    DiagnosticLines diagnostics;
    EXPECT_EQ(FrameRefusal(decoder, 1), WINCODEC_ERR_WRONGSTATE);
    EXPECT_THAT(diagnostics.Take(), ElementsAre("[Lumora] Could not identify the file format"));

    EXPECT_EQ(Initialize(decoder, shorterStream), WINCODEC_ERR_WRONGSTATE);
    EXPECT_EQ(noiseStream.references, 0u);
    EXPECT_EQ(FrameRefusal(decoder, 2), WINCODEC_ERR_WRONGSTATE);
    EXPECT_THAT(diagnostics.Take(), ElementsAre("[Lumora] MRC: Frame index is out of range"));
    EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[0]);
    EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
}

TEST(DecoderFrames, AreThereAfterAFailedInitializeAndAGoodOne)
{
    TestStream noiseStream{noise};
    TestStream stream{GrayStack(2)};
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    EXPECT_EQ(Initialize(decoder, noiseStream), WINCODEC_ERR_WRONGSTATE);
    EXPECT_EQ(noiseStream.references, 1u) << "a refused stream is kept as well";
    EXPECT_EQ(FrameCount(decoder), 1u);
    EXPECT_EQ(FrameRefusal(decoder, 0), WINCODEC_ERR_FRAMEMISSING);

    EXPECT_EQ(Initialize(decoder, stream), S_OK);
    EXPECT_EQ(noiseStream.references, 0u);
    EXPECT_EQ(stream.references, 1u);
    EXPECT_EQ(FrameCount(decoder), 2u);
    EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[0]);
    EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
    EXPECT_EQ(Initialize(decoder, stream), WINCODEC_ERR_WRONGSTATE);
    EXPECT_EQ(stream.references, 1u) << "the same stream again";
    decoder.Reset();
    EXPECT_EQ(stream.references, 0u);
}
