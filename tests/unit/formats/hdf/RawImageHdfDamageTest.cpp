#include "support/files/Hdf5File.h"
#include "support/streams/DamagedFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

/// A picture of colours with a text. Colours are shown without a histogram of all possible samples, so that
/// very many files can be opened.
Bytes PictureFile(const Hdf5Storage& storage = {})
{
    return Hdf5File()
        .AnyDataSet("/picture", H5T_STD_U8LE, {32, 32, 3}, storage)
        .Text("/picture", "CLASS", "IMAGE")
        .Text("/picture", "INTERLACE_MODE", "INTERLACE_PIXEL")
        .Strings("/Version", {R"({"format": "F", "version": "1"})"})
        .Build();
}

/// Opens the file for a frame and, where that succeeds, checks the frame's size.
void ExpectSaneFrame(const Bytes& file, size_t place)
{
    const FileOpen open{file};
    EXPECT_THAT(open.lines, Each(StartsWith("[Lumora] "))) << place;
    if (!open.succeeded)
        return;
    const RawImageBase& reader = *open.image.Reader();
    const size_t samples = reader.pixelType == PixelType::RGB24 ? 3 : 1;
    EXPECT_EQ(reader.displayPixels.size(), size_t{reader.width} * reader.height * samples) << place;
}

TEST(DamagedHdfFile, DoesNotOpenWhenItIsCut)
{
    const Bytes whole = PictureFile();
    ASSERT_TRUE(FileOpen{whole}.succeeded);
    // Every length of the superblock, and some of the rest.
    for (size_t length = 64; length < whole.size(); length += length < 100 ? 1 : 61)
    {
        const FileOpen open{FirstBytes(whole, length)};
        EXPECT_FALSE(open.succeeded) << length;
        EXPECT_THAT(open.lines, ElementsAre("[Lumora] HDF: Could not open file")) << length;
    }
}

TEST(DamagedHdfFile, OpensOrNotWithAnyByteChanged)
{
    for (const Bytes& whole : {PictureFile(), PictureFile({.chunk = {32, 32, 3}})})
    {
        Bytes file = whole;
        for (size_t place = 8; place < whole.size(); ++place)
        {
            // Room that nothing uses, and most samples.
            const bool isBetweenZeros = place > 0 && whole[place - 1] == 0 && whole[place] == 0;
            const bool isSample = whole[place] == static_cast<uint8_t>(whole[place - 1] + 31);
            if (isBetweenZeros || isSample)
                continue;
            for (const uint8_t value : {uint8_t{0x00}, uint8_t{0xFF}, static_cast<uint8_t>(whole[place] ^ 1)})
            {
                file[place] = value;
                if (value != whole[place])
                    ExpectSaneFrame(file, place);
            }
            file[place] = whole[place];
        }
    }
}

TEST(DamagedHdfFile, DoesNotOpenFromAStreamThatFails)
{
    const Bytes file = PictureFile();
    for (const FailingStreamCall call : {&StreamFaults::failReadAt, &StreamFaults::failSeekAt})
    {
        // Identification, the whole file, and none.
        StreamFaults faults;
        faults.*call = 1;
        const FileOpen unknown{file, 1, 0, faults};
        EXPECT_FALSE(unknown.succeeded);
        EXPECT_THAT(unknown.lines, IsEmpty());
        faults.*call = 2;
        const FileOpen unread{file, 1, 0, faults};
        EXPECT_FALSE(unread.succeeded);
        EXPECT_THAT(unread.lines, ElementsAre("[Lumora] HDF: Could not open file"));
        faults.*call = 3;
        EXPECT_TRUE((FileOpen{file, 1, 0, faults}.succeeded));
    }
    const FileOpen shortRead{file, 1, 0, {.longestRead = 100}};
    EXPECT_FALSE(shortRead.succeeded);
    EXPECT_THAT(shortRead.lines, ElementsAre("[Lumora] HDF: Could not open file"));
}

} // namespace
