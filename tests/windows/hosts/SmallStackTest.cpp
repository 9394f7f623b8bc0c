#include "support/gray/SmallStack.h"
#include "support/files/DmImages.h"
#include "support/gray/GrayFiles.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/Outcome.h"
#include "windows/clients/PropertyStoreClient.h"
#include "windows/hosts/SampleFiles.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <vector>

// Windows gives a thread 1 MiB of stack, but a host may give it less, and has used a part of it already.

namespace {

constexpr size_t hostsStack = 0x40000;

/// All that a host gets of a file: its pictures and its properties.
struct Contents
{
    std::vector<Bytes> pictures;
    std::array<PropertyValue, 8> properties;

    bool operator==(const Contents&) const = default;
};

Contents ContentsOf(const Bytes& file)
{
    Contents contents;
    TestStream stream{file};
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    for (UINT index = 0; index < FrameCount(decoder); ++index)
        contents.pictures.push_back(Picture(Frame(decoder, index)));
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    EXPECT_EQ(Initialize(store, &stream), S_OK);
    contents.properties = ValuesOf(store);
    return contents;
}

/// Expects of a file on a small stack what a thread with much stack gets.
void ExpectContents(const Bytes& file)
{
    const Contents expected = ContentsOf(file);
    EXPECT_FALSE(expected.pictures.empty());
    Contents contents;
    RunOnSmallStack(hostsStack, [&] { contents = ContentsOf(file); });
    EXPECT_TRUE(contents == expected);
}

} // namespace

TEST(SmallStack, IsEnoughForEverySample)
{
    for (const SampleFile& sample : SampleFiles())
    {
        SCOPED_TRACE(sample.name);
        ExpectContents(sample.content);
    }
}

TEST(SmallStack, IsEnoughForEveryFormat)
{
    ExpectContents(GrayStack(3));
    for (const GrayFile& file : GrayFiles())
    {
        SCOPED_TRACE(file.name);
        ExpectContents(file.content);
    }
}

TEST(SmallStack, IsEnoughForGroupsInGroups)
{
    for (const DmLayout& layout : {DmLayout{3}, DmLayout{4}})
    {
        // The deepest groups that are followed: an image takes three itself.
        DmTags tags = DmTags{layout}.Image(SmallNumberedImage(7));
        for (uint32_t groups = 1; groups < 253; ++groups)
            tags = DmTags{layout}.Group("", tags);
        ExpectContents(DmFile{layout}.Root(tags).Build());
    }
}

TEST(SmallStack, IsEnoughForAnExceptionOfEveryFormat)
{
    for (const SampleFile& sample : SampleFiles())
    {
        SCOPED_TRACE(sample.name);
        for (const uint32_t call : {1U, 2U, 3U})
        {
            const auto run = [&](const StreamFaults& faults) {
                Outcome decoding;
                Outcome properties;
                TestStream stream{sample.content, faults};
                const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
                decoding = OutcomeOf([&] { return Initialize(decoder, stream); });
                TestStream otherStream{sample.content, faults};
                const ComPtr<IPropertyStore> store = NewPropertyStore();
                properties = OutcomeOf([&] { return Initialize(store, &otherStream); });
                return std::pair{decoding, properties};
            };
            for (const StreamFaults& faults :
                 {StreamFaults{.failStatAt = call}, StreamFaults{.failReadAt = call}})
            {
                const auto expected = run(faults);
                RunOnSmallStack(hostsStack, [&] { EXPECT_EQ(run(faults), expected); });
            }
        }
    }
}
