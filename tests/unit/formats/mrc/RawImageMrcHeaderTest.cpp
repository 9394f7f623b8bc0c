#include "formats/mrc/RawImageMrc.h"
#include "support/FileFacts.h"
#include "support/files/MrcFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

using MrcRead = FileRead<RawImageMrc>;

namespace {

struct SizeRow
{
    ByteOrder writtenIn;
    uint32_t columns;
    uint32_t rows;
    ByteOrder readIn;
    uint32_t width;
    uint32_t height;
};

TEST(MrcReader, FindsTheByteOrderFromThePlausibilityOfTheSize)
{
    constexpr auto little = ByteOrder::LittleEndian;
    constexpr auto big = ByteOrder::BigEndian;
    const SizeRow rows[] = {
        {little, 1, 1, little, 1, 1},
        {little, 65535, 1, little, 65535, 1},
        {little, 1, 65535, little, 1, 65535},
        {little, 256, 256, little, 256, 256},
        {big, 1, 1, big, 1, 1},
        {big, 65535, 1, big, 65535, 1},
        {big, 1, 65535, big, 1, 65535},
        // 00 00 01 00 is 65536 in one order and 256 in the other.
        {little, 65536, 65536, big, 256, 256},
        {big, 65536, 65536, little, 256, 256},
    };
    for (const SizeRow& row : rows)
    {
        const auto file =
            MrcFile().Order(row.writtenIn).Size(row.columns, row.rows, 0).Samples(Bytes(65536)).Build();
        const MrcRead read{file, 0};

        EXPECT_TRUE(read.succeeded) << row.columns << " x " << row.rows;
        EXPECT_EQ(read.reader.byteOrder, row.readIn) << row.columns << " x " << row.rows;
        EXPECT_EQ(read.reader.flipVertical, row.readIn == big) << row.columns << " x " << row.rows;
        EXPECT_EQ(read.reader.software, row.readIn == big ? L"Gatan Digital Micrograph" : L"");
        EXPECT_EQ(read.reader.width, row.width) << row.columns << " x " << row.rows;
        EXPECT_EQ(read.reader.height, row.height) << row.columns << " x " << row.rows;
    }
}

TEST(MrcReader, RefusesASizeThatIsImplausibleInBothOrdersSilently)
{
    constexpr uint32_t sizes[][2] = {
        {65536, 1},
        {1, 65536},
        {70000, 1},
        {70000, 70000},
        {1, 70000},
        {0, 1},
        {1, 0},
        {0, 0},
        {0xFFFFFFFF, 1},
        {1, 0xFFFFFFFF},
        // Plausible in different orders only.
        {1, 0x01000000},
        {0x01000000, 1},
    };
    for (const auto& [columns, rows] : sizes)
        for (const ByteOrder order : {ByteOrder::LittleEndian, ByteOrder::BigEndian})
        {
            const auto file = MrcFile().Order(order).Size(columns, rows, 1).Samples(Bytes(70000));
            ExpectRefusal<RawImageMrc>(file.Build(), {}, testing::Message() << columns << " x " << rows,
                                       AllOf(Field(&RawImageBase::fileType, FileType::Mrc),
                                             Field(&RawImageBase::byteOrder, ByteOrder::BigEndian)));
        }
}

struct ModeRow
{
    uint32_t mode;
    PixelType pixelType;
    uint32_t frameBytes;
    const wchar_t* formatDetails;
};

/// Frames of 4 x 2 pixels.
constexpr ModeRow knownModes[] = {
    {0, PixelType::Int8, 8, L"MRC Mode 0"},       {1, PixelType::Int16, 16, L"MRC Mode 1"},
    {2, PixelType::Float32, 32, L"MRC Mode 2"},   {6, PixelType::UInt16, 16, L"MRC Mode 6"},
    {12, PixelType::Float16, 16, L"MRC Mode 12"}, {16, PixelType::RGB24, 24, L"MRC Mode 16"},
    {101, PixelType::UInt4, 4, L"MRC Mode 101"},
};

TEST(MrcReader, MapsEachModeToItsPixelTypeAndFrameSize)
{
    for (const ModeRow& row : knownModes)
        for (const ByteOrder order : {ByteOrder::LittleEndian, ByteOrder::BigEndian})
        {
            // Seven frames and all but one byte of the eighth; the header does not know how many.
            const auto file =
                MrcFile().Order(order).Size(4, 2, 0).Mode(row.mode).Samples(Bytes(8 * row.frameBytes - 1));
            const MrcRead read{file.Build(), 0};

            const bool swapped = order == ByteOrder::BigEndian;
            EXPECT_TRUE(read.succeeded) << row.mode;
            EXPECT_THAT(read.reader,
                        HasFacts({FileType::Mrc, row.pixelType, 4, 2, 7, swapped,
                                  swapped ? L"Gatan Digital Micrograph" : L"", row.formatDetails, order}))
                << row.mode;
        }
}

TEST(MrcReader, RefusesEveryOtherMode)
{
    constexpr uint32_t modes[] = {3,   4,   5,   7,   8,      9,       10,         11,         13,
                                  14,  15,  17,  18,  32,     100,     102,        103,        256,
                                  257, 357, 512, 513, 0x6500, 0x10000, 0x01000000, 0x80000000, 0xFFFFFFFF};
    for (const uint32_t number : modes)
        ExpectRefusal<RawImageMrc>(MrcFile().Size(4, 2, 1).Mode(number).Samples(Bytes(256)).Build(),
                                   {"[Lumora] MRC: Unsupported pixel type"}, number,
                                   HasFacts({FileType::Mrc, PixelType::Unknown, 4, 2, 1}));
}

TEST(MrcReader, ComplexModesOfAFileAreNotIdentifiedAtAll)
{
    for (const uint32_t number : {3U, 4U})
    {
        const FileOpen open{MrcFile().Size(4, 2, 1).Mode(number).Samples(Bytes(64)).Build()};
        EXPECT_FALSE(open.succeeded) << number;
        EXPECT_THAT(open.lines, ElementsAre("[Lumora] Could not identify the file format")) << number;
    }
}

struct VersionRow
{
    uint32_t version;
    FileType fileType;
    const wchar_t* formatDetails;
};

TEST(MrcReader, TellsTheRevisionOf2014FromItsTwoVersionNumbers)
{
    constexpr VersionRow rows[] = {
        {0, FileType::Mrc, L"MRC Mode 12"},
        {20139, FileType::Mrc, L"MRC Mode 12"},
        {20140, FileType::Mrc2014, L"MRC2014 Mode 12"},
        {20141, FileType::Mrc2014, L"MRC2014 Mode 12"},
        {20142, FileType::Mrc, L"MRC Mode 12"},
        {2014, FileType::Mrc, L"MRC Mode 12"},
        {0x00014EAC, FileType::Mrc, L"MRC Mode 12"}, // 20140 with one more bit
        {0xAC4E0000, FileType::Mrc, L"MRC Mode 12"}, // 20140 with its bytes swapped
        {0xFFFFFFFF, FileType::Mrc, L"MRC Mode 12"},
    };
    for (const VersionRow& row : rows)
        for (const ByteOrder order : {ByteOrder::LittleEndian, ByteOrder::BigEndian})
        {
            const auto file =
                MrcFile().Order(order).Size(1, 1, 1).Mode(12).Version(row.version).Samples({0, 0});
            const MrcRead read{file.Build(), 0};

            EXPECT_TRUE(read.succeeded) << row.version;
            EXPECT_EQ(read.reader.fileType, row.fileType) << row.version;
            EXPECT_EQ(read.reader.formatDetails, row.formatDetails) << row.version;
        }
}

TEST(MrcReader, IgnoresEveryOtherWordOfTheHeader)
{
    const auto file = MrcFile().Size(3, 1, 1).Mode(6).Version(20141).ExtendedHeader("ABCD", Bytes(8, 0x33));
    const MrcRead plain{MrcFile{file}.Numbers<uint16_t>({100, 228, 355}).Build()};

    Bytes noisy = plain.stream.bytes;
    constexpr size_t otherWords[][2] = {{16, 92}, {96, 108}, {112, 1024}};
    for (const auto& [first, end] : otherWords)
        for (size_t i = first; i < end; ++i)
            noisy.at(i) = 0xAA;
    const MrcRead read{noisy};

    for (const MrcRead* each : {&plain, &read})
    {
        EXPECT_TRUE(each->succeeded);
        EXPECT_THAT(each->reader,
                    HasFacts({FileType::Mrc2014, PixelType::UInt16, 3, 1, 1, false, L"", L"MRC2014 Mode 6"}));
        EXPECT_THAT(each->reader.displayPixels, ElementsAre(0, 128, 255));
        EXPECT_THAT(each->lines, IsEmpty());
    }
}

} // namespace
