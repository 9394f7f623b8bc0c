#include "formats/mrc/RawImageMrc.h"
#include "support/FileFacts.h"
#include "support/files/MrcFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using MrcRead = FileRead<RawImageMrc>;

namespace {

const std::string noCompleteFrame = "[Lumora] MRC: No complete frame is present in the file";
const std::string packed4Bit =
    "[Lumora] MRC: Non-standard 4-bit pixel format detected while mode 0 is specified";

/// One sample, and every optional fact that a header can tell. The whole file has 1153 bytes.
Bytes FileWithEverything()
{
    return MrcFile()
        .Size(1, 1, 1)
        .Mode(0)
        .Version(20140)
        .Labels("SerialEM 4 bits packed")
        .ExtendedHeader("TAV1", AcquisitionHeader(7, "TAV Ardix", "2.10"))
        .Samples({0xF0})
        .Build();
}

struct LengthRow
{
    size_t first;
    size_t last;
    bool headerSucceeds;
    bool frameSucceeds;
    Lines headerLines;
    Lines frameLines;
    /// The facts, where the header is read.
    FileType fileType;
    PixelType pixelType;
    const wchar_t* software;
};

/// Before the first frame's place, the unsigned difference "stream size less data start" wraps and promises
/// more frames than any header asks for; only reading a frame shows that there is none.
const LengthRow lengths[] = {
    // The size words, the mode word and the size of the extended header must be there.
    {0, 95, false, false, {}, {}, FileType::Mrc, PixelType::Unknown, L""},
    {96, 111, true, false, {}, {cannotReadImage}, FileType::Mrc, PixelType::Int8, L""},
    // The version word is complete.
    {112, 1023, true, false, {}, {cannotReadImage}, FileType::Mrc2014, PixelType::Int8, L""},
    // The difference is zero.
    {1024, 1024, false, false, {noCompleteFrame}, {noCompleteFrame}, {}, {}, L""},
    // The labels are complete, and the extended header's first byte serves as a frame.
    {1025, 1091, true, true, {packed4Bit}, {packed4Bit}, FileType::Mrc2014, PixelType::UInt4, L"SerialEM"},
    // The application's name is complete.
    {1092, 1107, true, true, {packed4Bit}, {packed4Bit}, FileType::Mrc2014, PixelType::UInt4, L"Ardix"},
    // So is its version; the last length has room for the extended header and a frame.
    {1108, 1153, true, true, {packed4Bit}, {packed4Bit}, FileType::Mrc2014, PixelType::UInt4, L"Ardix 2.10"},
};

FileFacts FactsOf(const LengthRow& row)
{
    const bool packed = row.pixelType == PixelType::UInt4;
    const std::wstring details = row.fileType == FileType::Mrc2014 ? L"MRC2014 Mode 0" : L"MRC Mode 0";
    return {row.fileType, row.pixelType, packed ? 2U : 1U, 1, 1, packed, row.software, details};
}

TEST(MrcReader, ReadsAndOpensAsFarAsTheStreamReaches)
{
    const Bytes whole = FileWithEverything();
    ASSERT_EQ(whole.size(), 1153U);
    for (const LengthRow& row : lengths)
        for (size_t length = row.first; length <= row.last; ++length)
        {
            const Bytes file(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));

            const MrcRead header{file, 0};
            EXPECT_EQ(header.succeeded, row.headerSucceeds) << length;
            EXPECT_EQ(header.lines, row.headerLines) << length;
            EXPECT_THAT(header.reader.displayPixels, IsEmpty()) << length;
            if (row.headerSucceeds)
                EXPECT_THAT(header.reader, HasFacts(FactsOf(row))) << length;

            const MrcRead frame{file, 1};
            EXPECT_EQ(frame.succeeded, row.frameSucceeds) << length;
            EXPECT_EQ(frame.lines, row.frameLines) << length;
            if (row.frameSucceeds)
            {
                EXPECT_THAT(frame.reader, HasFacts(FactsOf(row))) << length;
                // The sample is found behind the extended header as soon as both fit.
                if (length == 1153)
                {
                    EXPECT_THAT(frame.reader.displayPixels, ElementsAre(0, 255));
                }
                else
                {
                    EXPECT_THAT(frame.reader.displayPixels, ElementsAre(0, 0)) << length;
                }
            }

            const FileOpen openedHeader{file, 0};
            EXPECT_EQ(openedHeader.succeeded, row.headerSucceeds) << length;
            EXPECT_EQ(openedHeader.lines, row.headerLines) << length;
            const FileOpen openedFrame{file, 1};
            EXPECT_EQ(openedFrame.succeeded, row.frameSucceeds) << length;
            EXPECT_EQ(openedFrame.lines, row.frameLines) << length;
        }
}

TEST(MrcReader, RefusesAnUnknownModeAsSoonAsItsWordIsThere)
{
    const Bytes whole = MrcFile().Size(1, 1, 1).Mode(4).Build();
    for (size_t length = 0; length <= 1024; ++length)
    {
        const Bytes file(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
        const MrcRead read{file};

        EXPECT_FALSE(read.succeeded) << length;
        EXPECT_EQ(read.lines, length < 16 ? Lines{} : Lines{"[Lumora] MRC: Unsupported pixel type"})
            << length;
    }
}

TEST(MrcReader, IgnoresTheMaskOfAnAcquisitionProgramThatIsCut)
{
    // Up to here the name would be cut too, but a mask without name bits has nothing more to read.
    for (const uint32_t mask : {0U, 7U})
        for (size_t length = 1025; length <= 1091; ++length)
        {
            Bytes file = MrcFile()
                             .Size(1, 1, 1)
                             .ExtendedHeader("TAV", AcquisitionHeader(mask, "TAV Ardix", ""))
                             .Build();
            file.resize(length);
            const MrcRead read{file, 0};

            EXPECT_TRUE(read.succeeded) << length;
            EXPECT_EQ(read.reader.software, L"") << length;
            EXPECT_THAT(read.lines, IsEmpty()) << length;
        }
}

struct WrapRow
{
    uint32_t columns;
    uint32_t rows;
    uint32_t sections;
    uint32_t mode;
    size_t streamBytes;
    uint32_t frameCount;
    Lines lines;
};

TEST(MrcReader, CountsFramesWithAnUnsignedDifferenceThatWrapsBeforeTheDataStart)
{
    const std::string lessFrames = "[Lumora] MRC: The file contains less frames than specified in the header";
    const std::string noCountInHeader =
        "[Lumora] MRC: The file contains frames while the header specifies zero";
    const WrapRow rows[] = {
        // 2^64 - 928 bytes: the low 32 bits of the number of frames are FFFFFC60.
        {1, 1, 1, 0, 96, 1, {}},
        {1, 1, 0, 0, 96, 0xFFFFFC60, {noCountInHeader}},
        // Frames of three bytes: 6148914691236516896, in hexadecimal 5555555555555420.
        {3, 1, 0, 0, 96, 0x55555420, {noCountInHeader}},
        // Frames of four: 2^62 - 232.
        {1, 1, 0, 2, 96, 0xFFFFFF18, {noCountInHeader}},
        // One byte before the data start.
        {1, 1, 0, 0, 1023, 0xFFFFFFFF, {noCountInHeader}},
        {1, 1, 0xFFFFFFFF, 0, 1023, 0xFFFFFFFF, {}},
        // Many sections: 2^64 - 8096 first, then 2^64 - 928 with the short header.
        {1, 1, 0xFFFFFFFF, 0, 96, 0xFFFFFC60, {lessFrames}},
        {1, 1, 0xFFFFE060, 0, 96, 0xFFFFE060, {}},
        // Room for all 2000 bytes behind the short header, but the long one is taken first and wraps.
        {1, 1, 2000, 0, 3024, 2000, {}},
    };
    for (const WrapRow& row : rows)
    {
        Bytes file = MrcFile().Size(row.columns, row.rows, row.sections).Mode(row.mode).Build();
        file.resize(row.streamBytes);

        const MrcRead header{file, 0};
        EXPECT_TRUE(header.succeeded) << row.streamBytes;
        EXPECT_EQ(header.reader.frameCount, row.frameCount) << row.streamBytes;
        EXPECT_EQ(header.lines, row.lines) << row.streamBytes;

        Lines lines = row.lines;
        lines.push_back(cannotReadImage);
        for (const uint32_t frameIndex : {0U, row.frameCount - 1})
        {
            const MrcRead frame{file, 1, frameIndex};
            EXPECT_FALSE(frame.succeeded) << row.streamBytes;
            EXPECT_EQ(frame.lines, lines) << row.streamBytes;
        }
    }
}

} // namespace
