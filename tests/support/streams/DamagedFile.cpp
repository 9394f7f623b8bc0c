#include "support/streams/DamagedFile.h"

#include "support/FileFacts.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace Tav::Imaging::RawImage;
using testing::Each;
using testing::IsEmpty;
using testing::StartsWith;

Bytes FirstBytes(const Bytes& file, size_t length)
{
    return {file.begin(), file.begin() + static_cast<ptrdiff_t>(length)};
}

void ExpectSaneReads(const RawImageBase* header, const Lines& headerLines, const RawImageBase* frame,
                     const Lines& frameLines, uint32_t frameIndex, size_t place)
{
    EXPECT_THAT(headerLines, Each(StartsWith("[Lumora] "))) << place;
    EXPECT_THAT(frameLines, Each(StartsWith("[Lumora] "))) << place;
    // Only the frame itself can add lines to what its header gave rise to.
    ASSERT_LE(headerLines.size(), frameLines.size()) << place;
    EXPECT_TRUE(std::equal(headerLines.begin(), headerLines.end(), frameLines.begin())) << place;
    if (header)
    {
        EXPECT_THAT(header->displayPixels, IsEmpty()) << place;
        EXPECT_LT(frameIndex, header->frameCount) << place;
    }
    if (!frame)
        return;

    ASSERT_TRUE(header) << place;
    const bool colours = frame->pixelType == PixelType::RGB24 || frame->pixelType == PixelType::RGBA32;
    EXPECT_EQ(frame->displayPixels.size(), size_t{frame->width} * frame->height * (colours ? 3 : 1)) << place;
    EXPECT_THAT(*frame, HasFacts(FactsOf(*header))) << place;
}

void ExpectSaneOutcome(const Bytes& file, uint32_t frameIndex, size_t place)
{
    const FileOpen header{file, 0, frameIndex};
    const FileOpen frame{file, 1, frameIndex};
    ExpectSaneReads(header.image.Reader(), header.lines, frame.image.Reader(), frame.lines, frameIndex,
                    place);
}
