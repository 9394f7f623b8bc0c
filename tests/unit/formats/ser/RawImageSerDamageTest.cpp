#include "formats/RawImageSer.h"
#include "support/files/SerFile.h"
#include "support/streams/DamagedFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using SerRead = FileRead<RawImageSer>;

namespace {

/// Two pictures of 4 x 2 bytes.
Bytes Series(uint16_t version)
{
    return SerFile()
        .Version(version)
        .Element(4, 2, {1, 2, 3, 4, 5, 6, 7, 8})
        .Element(4, 2, {9, 10, 11, 12, 13, 14, 15, 16})
        .Build();
}

struct LengthRow
{
    uint16_t version;
    uint32_t frameIndex;
    /// The shortest lengths of which the facts can be read, and the frame can be shown.
    size_t headerEnd;
    size_t frameEnd;
};

TEST(DamagedSerFile, OpensOrNotAtEveryLength)
{
    // Both offsets must lie in the stream for either frame; the second element begins 58 bytes after the
    // first, which begins at 34 or 46. Each has a header of 50 bytes and 8 bytes of samples.
    constexpr LengthRow rows[] = {
        {0x0210, 0, 93, 93},
        {0x0210, 1, 142, 150},
        {0x0220, 0, 105, 105},
        {0x0220, 1, 154, 162},
    };
    for (const LengthRow& row : rows)
    {
        const Bytes whole = Series(row.version);
        ASSERT_EQ(whole.size(), row.version == 0x0210 ? 150U : 162U);
        for (size_t length = 0; length <= whole.size(); ++length)
        {
            const Bytes file = FirstBytes(whole, length);
            const SerRead header{file, 0, row.frameIndex};
            EXPECT_EQ(header.succeeded, length >= row.headerEnd) << length;
            EXPECT_THAT(header.lines, IsEmpty()) << length;

            const SerRead frame{file, 1, row.frameIndex};
            EXPECT_EQ(frame.succeeded, length >= row.frameEnd) << length;
            if (length >= row.headerEnd && length < row.frameEnd)
            {
                EXPECT_THAT(frame.lines, ElementsAre(cannotReadImage)) << length;
            }
            else
            {
                EXPECT_THAT(frame.lines, IsEmpty()) << length;
            }
            ExpectSaneOutcome(file, row.frameIndex, length);
        }
    }
}

TEST(DamagedSerFile, IsReadOrNotWithAnyByteOfItsHeadersChanged)
{
    struct Row
    {
        uint16_t version;
        /// Where the first element begins, and the second one's data type.
        size_t fileHeaderEnd;
        size_t secondType;
    };
    for (const Row& row : {Row{0x0210, 34, 132}, Row{0x0220, 46, 144}})
    {
        const Bytes file = Series(row.version);
        const auto check = [](const Bytes& changed, size_t place) {
            ExpectSaneRead<RawImageSer>(changed, 1, place);
        };
        ForEveryChangedByte(file, row.fileHeaderEnd, check);
        ForEveryChangedByte(file, row.secondType, row.secondType + 10, check);
    }
}

TEST(DamagedSerFile, OpensOrNotWithAnyByteOfItsHeaderChanged)
{
    ForEveryChangedByte(Series(0x0220), 46,
                        [](const Bytes& file, size_t place) { ExpectSaneOutcome(file, 0, place); });
}

TEST(SerReader, FailsSilentlyWhereALaterWindowCannotBeRead)
{
    // The element lies in a second window.
    const Bytes distant = SerFile().Element(1, 1, Bytes(0x400000)).Element(2, 1, {0, 255}).Build();
    ASSERT_TRUE(SerRead(distant, 0, 1).succeeded);
    for (const StreamFaults& faults : {StreamFaults{.failSeekAt = 2}, StreamFaults{.failReadAt = 2}})
    {
        const SerRead read{distant, 0, 1, faults};
        EXPECT_FALSE(read.succeeded);
        EXPECT_THAT(read.lines, IsEmpty());
    }
}

} // namespace
