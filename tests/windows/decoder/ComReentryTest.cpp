#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/support/CallingStream.h"

#include <gtest/gtest.h>

// A stream belongs to the host, which may do anything while it is read, on the thread that holds the
// decoder's lock: let a message through, or ask the same decoder for something.

TEST(Reentry, IsGivenTheFrameAtHandWhileTheNextIsDecoded)
{
    CallingStream stream{GrayStack(2)};
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    bool called = false;
    stream.beforeRead = [&] {
        EXPECT_EQ(FrameCount(decoder), 2u);
        EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[0]);
        called = true;
    };
    EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
    EXPECT_TRUE(called);
    EXPECT_EQ(stream.references, 1u);
}

TEST(Reentry, MayGiveTheDecoderAnotherStreamWhileAFrameIsDecoded)
{
    CallingStream stream{GrayStack(3)};
    TestStream otherStream{GrayStack(3)};
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    stream.beforeRead = [&] {
        EXPECT_EQ(Initialize(decoder, otherStream), WINCODEC_ERR_WRONGSTATE);
        EXPECT_GE(stream.references, 1u) << "the stream that is being read is still held";
    };
    EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]) << "from the stream that it was begun with";
    EXPECT_EQ(stream.references, 0u);
    EXPECT_EQ(otherStream.references, 1u);
    EXPECT_EQ(Calls(otherStream), 0u);

    EXPECT_EQ(Picture(Frame(decoder, 2)), grayPictures[2]) << "from the other one";
    EXPECT_GT(Calls(otherStream), 0u);
    decoder.Reset();
    EXPECT_EQ(otherStream.references, 0u);
}

TEST(Reentry, MayOpenAnotherStreamWhileOneIsOpened)
{
    CallingStream stream{GrayStack(2)};
    TestStream otherStream{GrayStack(3)};
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    stream.beforeRead = [&] { EXPECT_EQ(Initialize(decoder, otherStream), S_OK); };
    EXPECT_EQ(Initialize(decoder, stream), S_OK);
    EXPECT_EQ(FrameCount(decoder), 2u) << "the one that was finished last counts";
    EXPECT_EQ(stream.references, 0u);
    EXPECT_EQ(otherStream.references, 1u) << "the one that came last is kept";
    EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[0]);
    EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
    decoder.Reset();
    EXPECT_EQ(otherStream.references, 0u);
}
