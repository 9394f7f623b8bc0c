#include "windows/clients/DecoderClient.h"
#include "windows/clients/PropertyStoreClient.h"
#include "windows/hosts/SampleFiles.h"
#include "windows/support/CallingStream.h"

#include <gtest/gtest.h>

// The owner of a stream may do anything while it is read, for example let a message through that asks for
// another picture. Here it does so before each read of each sample once.

namespace {

Bytes PictureOf(const Bytes& sample)
{
    TestStream stream{sample};
    return Picture(Frame(NewDecoder(stream), 0));
}

/// Opens the sample, and before one of its reads the same decoder opens it from another stream. Returns false
/// if there are not so many reads.
bool OpensTwice(const Bytes& sample, const Bytes& picture, uint32_t readsBefore)
{
    CallingStream stream{sample};
    TestStream otherStream{sample};
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    bool called = false;
    stream.readsBefore = readsBefore;
    stream.beforeRead = [&] {
        EXPECT_EQ(Initialize(decoder, otherStream), S_OK);
        EXPECT_TRUE(Picture(Frame(decoder, 0)) == picture);
        called = true;
    };
    EXPECT_EQ(Initialize(decoder, stream), S_OK);
    EXPECT_TRUE(Picture(Frame(decoder, 0)) == picture);
    decoder.Reset();
    EXPECT_EQ(stream.references, 0U);
    EXPECT_EQ(otherStream.references, 0U);
    return called;
}

/// The same for the property handler.
bool ReadsPropertiesTwice(const Bytes& sample, uint32_t readsBefore)
{
    CallingStream stream{sample};
    TestStream otherStream{sample};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    bool called = false;
    stream.readsBefore = readsBefore;
    stream.beforeRead = [&] {
        EXPECT_EQ(Initialize(store, &otherStream), S_OK);
        called = true;
    };
    EXPECT_EQ(Initialize(store, &stream), S_OK);
    EXPECT_NE(ValueOf(store, servedKeys[0]), PropertyValue{});
    EXPECT_EQ(stream.references, 0U);
    EXPECT_EQ(otherStream.references, 0U);
    return called;
}

/// Asks an opened decoder for its last frame, and before one of its reads for what is at hand.
bool AsksForTheFrameAtHand(const Bytes& sample, const Bytes& picture, uint32_t readsBefore)
{
    CallingStream stream{sample};
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    const UINT frames = FrameCount(decoder);
    bool called = false;
    stream.readsBefore = readsBefore;
    stream.beforeRead = [&] {
        EXPECT_EQ(FrameCount(decoder), frames);
        EXPECT_TRUE(Picture(Frame(decoder, 0)) == picture);
        called = true;
    };
    EXPECT_FALSE(Picture(Frame(decoder, frames - 1)).empty());
    decoder.Reset();
    EXPECT_EQ(stream.references, 0U);
    return called;
}

} // namespace

TEST(SampleReentry, MayHappenBeforeEachRead)
{
    for (const SampleFile& sample : SampleFiles())
    {
        SCOPED_TRACE(sample.name);
        const Bytes picture = PictureOf(sample.content);
        uint32_t reads = 0;
        while (OpensTwice(sample.content, picture, reads))
            ++reads;
        EXPECT_GT(reads, 0U);
        uint32_t readsOfProperties = 0;
        while (ReadsPropertiesTwice(sample.content, readsOfProperties))
            ++readsOfProperties;
        EXPECT_GT(readsOfProperties, 0U);
        uint32_t readsOfTheLast = 0;
        while (AsksForTheFrameAtHand(sample.content, picture, readsOfTheLast))
            ++readsOfTheLast;
    }
}
