#include "formats/mrc/RawImageMrc.h"
#include "support/FileFacts.h"
#include "support/files/MrcFile.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using MrcRead = FileRead<RawImageMrc>;

namespace {

const std::string packedSamples =
    "[Lumora] MRC: Non-standard 4-bit pixel format detected while mode 0 is specified";

/// A label block with `first` at its start and `other` at `offset`, the rest NUL.
std::string Labels(std::string_view first, size_t offset, std::string_view other)
{
    std::string block(800, '\0');
    block.replace(0, first.size(), first);
    block.replace(offset, other.size(), other);
    return block;
}

struct LabelRow
{
    const char* what;
    std::string labels;
    uint32_t mode;
    bool packed;
};

TEST(MrcReader, RecognisesPacked4BitSamplesByTheLabels)
{
    using namespace std::string_literals;
    const LabelRow rows[] = {
        {"one label", "SerialEM: Digitized on a camera, 4 bits packed", 0, true},
        {"adjacent texts", "SerialEM4 bits packed", 0, true},
        {"behind NULs", Labels("SerialEM", 80, "4 bits packed"), 0, true},
        {"NUL after the name", "SerialEM\0 4 bits packed"s, 0, true},
        {"the block's last bytes", Labels("SerialEM", 787, "4 bits packed"), 0, true},
        {"one byte beyond the block", Labels("SerialEM", 788, "4 bits packe"), 0, false},
        {"name only", "SerialEM: Digitized on a camera", 0, false},
        {"samples only", "4 bits packed", 0, false},
        {"name behind a blank", " SerialEM 4 bits packed", 0, false},
        {"name in the second label", Labels("Label one", 80, "SerialEM 4 bits packed"), 0, false},
        {"name after the samples", "4 bits packed SerialEM", 0, false},
        {"name in other letters", "SERIALEM 4 bits packed", 0, false},
        {"name cut", "SerialE 4 bits packed", 0, false},
        {"samples in other letters", "SerialEM 4 Bits Packed", 0, false},
        {"samples with a second blank", "SerialEM 4 bits  packed", 0, false},
        {"samples broken by a NUL", "SerialEM 4 bits\0packed"s, 0, false},
        {"no labels", "", 0, false},
        {"16-bit signed samples", "SerialEM 4 bits packed", 1, false},
        {"floating-point samples", "SerialEM 4 bits packed", 2, false},
        {"16-bit unsigned samples", "SerialEM 4 bits packed", 6, false},
        {"half-precision samples", "SerialEM 4 bits packed", 12, false},
        {"colours", "SerialEM 4 bits packed", 16, false},
    };
    for (const LabelRow& row : rows)
        for (const ByteOrder order : {ByteOrder::LittleEndian, ByteOrder::BigEndian})
        {
            // The sample behind the block is the letter that the text at its very end lacks.
            auto file = MrcFile()
                            .Order(order)
                            .Size(6, 1, 1)
                            .Mode(row.mode)
                            .Labels(row.labels)
                            .Samples(Bytes(24, 'd'));
            const MrcRead read{file.Build(), 0};

            const bool swapped = order == ByteOrder::BigEndian;
            EXPECT_TRUE(read.succeeded) << row.what;
            EXPECT_EQ(read.reader.pixelType == PixelType::UInt4, row.packed) << row.what;
            EXPECT_EQ(read.reader.width, row.packed ? 12U : 6U) << row.what;
            EXPECT_EQ(read.reader.height, 1U) << row.what;
            EXPECT_EQ(read.reader.flipVertical, row.packed || swapped) << row.what;
            EXPECT_EQ(read.reader.software, row.packed ? L"SerialEM"
                                            : swapped  ? L"Gatan Digital Micrograph"
                                                       : L"")
                << row.what;
            EXPECT_EQ(read.lines, row.packed ? Lines{packedSamples} : Lines{}) << row.what;
            EXPECT_EQ(read.reader.formatDetails, L"MRC Mode " + std::to_wstring(row.mode)) << row.what;
        }
}

TEST(MrcReader, KeepsMode0InTheDetailsOfPackedSamples)
{
    const auto file =
        MrcFile().Size(1, 1, 1).Mode(0).Version(20141).Labels("SerialEM 4 bits packed").Samples({0});
    const MrcRead read{file.Build(), 0};
    EXPECT_EQ(read.reader.fileType, FileType::Mrc2014);
    EXPECT_EQ(read.reader.pixelType, PixelType::UInt4);
    EXPECT_EQ(read.reader.formatDetails, L"MRC2014 Mode 0");
}

TEST(MrcReader, DoesNotLookAtTheLabelsOfMode101)
{
    const auto file = MrcFile().Size(2, 1, 1).Mode(101).Labels("SerialEM 4 bits packed").Samples({0});
    const MrcRead read{file.Build(), 0};
    EXPECT_TRUE(read.succeeded);
    EXPECT_THAT(read.reader,
                HasFacts({FileType::Mrc, PixelType::UInt4, 2, 1, 1, false, L"", L"MRC Mode 101"}));
    EXPECT_THAT(read.lines, ElementsAre("[Lumora] MRC: Non-standard mode 101 detected (4-bit pixel format)"));
}

/// A file of 16-bit samples with an acquisition program's extended header.
MrcFile AcquiredFile(uint32_t mask, std::string_view application, std::string_view version)
{
    return MrcFile()
        .Size(1, 1, 1)
        .Mode(1)
        .ExtendedHeader("TAV1", AcquisitionHeader(mask, application, version))
        .Samples({0, 0});
}

TEST(MrcReader, ReadsNameAndVersionOfTheAcquisitionProgramAsTheMaskAllows)
{
    struct Row
    {
        uint32_t mask;
        const wchar_t* software;
    };
    constexpr Row rows[] = {
        {0, L""},
        {1, L"Ardix"},
        {2, L"Ardix"},
        {3, L"Ardix"},
        {4, L""},
        {5, L"Ardix 2.10"},
        {6, L"Ardix 2.10"},
        {7, L"Ardix 2.10"},
        // Other bits mean nothing.
        {0xFFFFFFF8, L""},
        {0xFFFFFFFC, L""},
        {0xFFFFFFF9, L"Ardix"},
        {0xFFFFFFFF, L"Ardix 2.10"},
        {0x01000000, L""},
        {0x07000000, L""},
    };
    for (const Row& row : rows)
    {
        const MrcRead read{AcquiredFile(row.mask, "TAV Ardix", "2.10").Build()};
        EXPECT_TRUE(read.succeeded) << row.mask;
        EXPECT_EQ(read.reader.software, row.software) << row.mask;
        EXPECT_FALSE(read.reader.flipVertical) << row.mask;
    }
}

TEST(MrcReader, NamesTheAcquisitionProgram)
{
    using namespace std::string_literals;
    struct Row
    {
        std::string application;
        std::string version;
        std::wstring software;
    };
    const Row rows[] = {
        {"TAV Tomography", "5.21.0", L"Tomography 5.21.0"},
        {"TAV Ardix", "2.10", L"Ardix 2.10"},
        // Any other name as it is.
        {"Ardix", "2.10", L"Ardix 2.10"},
        {"TAV Ardix ", "1", L"TAV Ardix  1"},
        {"TAV Ardix2", "1", L"TAV Ardix2 1"},
        {"tav ardix", "1", L"tav ardix 1"},
        {" TAV Ardix", "1", L" TAV Ardix 1"},
        {"TAV Tomography 2", "1", L"TAV Tomography 2 1"},
        {"TAV TomographyXY", "1", L"TAV TomographyXY 1"},
        {"TAV", "", L"TAV "},
        // A field ends at its first NUL, or after 16 bytes.
        {"TAV Ardix\0junk"s, "2.10\0more"s, L"Ardix 2.10"},
        {"ABCDEFGHIJKLMNOP", "1", L"ABCDEFGHIJKLMNOP 1"},
        {"ABCDEFGHIJKLMNO", "1", L"ABCDEFGHIJKLMNO 1"},
        {"ABCDEFGHIJKLMNOP", "abcdefghijklmnop", L"ABCDEFGHIJKLMNOP abcdefghijklmnop"},
        {"TAV Ardix", "abcdefghijklmnop", L"Ardix abcdefghijklmnop"},
        {"TAV Ardix", "", L"Ardix "},
        {"", "2.10", L" 2.10"},
        {"", "", L" "},
        {"\0TAV Ardix"s, "\0002.10"s, L" "},
        // Bytes are signed: 128 and more become codes near the end of the first plane.
        {"\x7F\x80\xE9\xFF", "\xB2", L"\x7F\xFF80\xFFE9\xFFFF \xFFB2"},
    };
    for (const Row& row : rows)
    {
        const MrcRead named{AcquiredFile(3, row.application, row.version).Build(), 0};
        const MrcRead both{AcquiredFile(7, row.application, row.version).Build(), 0};
        const size_t nameLength = row.software.find_last_of(L' ');
        EXPECT_EQ(named.reader.software, row.software.substr(0, nameLength)) << row.application;
        EXPECT_EQ(both.reader.software, row.software) << row.application;
        EXPECT_THAT(both.lines, IsEmpty());
    }
}

TEST(MrcReader, LooksForAnAcquisitionProgramByThreeLetters)
{
    struct Row
    {
        const char* extendedType;
        const wchar_t* software;
    };
    constexpr Row rows[] = {
        {"TAV1", L"Ardix"}, {"TAV2", L"Ardix"}, {"TAV ", L"Ardix"}, {"TAV", L"Ardix"}, {"tav1", L""},
        {"TAW1", L""},      {"TA", L""},        {" TAV", L""},      {"XTAV", L""},     {"", L""},
        {"SERI", L""},      {"CCP4", L""},      {"UAV1", L""},      {"TBV1", L""},
    };
    for (const Row& row : rows)
    {
        auto file = AcquiredFile(1, "TAV Ardix", "");
        file.ExtendedHeader(row.extendedType, AcquisitionHeader(1, "TAV Ardix", ""));
        const MrcRead read{file.Build(), 0};
        EXPECT_TRUE(read.succeeded) << row.extendedType;
        EXPECT_EQ(read.reader.software, row.software) << row.extendedType;
    }
}

TEST(MrcReader, FindsTheAcquisitionProgramBehindTheShortHeaderWhereverTheFramesAre)
{
    // No extended header by its size, so that its bytes are the frame.
    const MrcRead unsized{AcquiredFile(5, "TAV Ardix", "2.10").ClaimExtendedBytes(0).Build()};
    EXPECT_TRUE(unsized.succeeded);
    EXPECT_EQ(unsized.reader.software, L"Ardix 2.10");

    // The long header leaves the place where the mask would be empty.
    const MrcRead moved{AcquiredFile(5, "TAV Ardix", "2.10").MainHeaderBytes(8192).Build()};
    EXPECT_TRUE(moved.succeeded);
    EXPECT_EQ(moved.reader.software, L"");
}

TEST(MrcReader, ReadsTheMaskAsLittleEndianInAByteSwappedFile)
{
    // The builder writes the acquisition header little-endian whatever the file's order.
    const MrcRead read{AcquiredFile(5, "TAV Ardix", "2.10").Order(ByteOrder::BigEndian).Build(), 0};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.byteOrder, ByteOrder::BigEndian);
    EXPECT_EQ(read.reader.software, L"Ardix 2.10");
    EXPECT_TRUE(read.reader.flipVertical);

    const MrcRead swapped{AcquiredFile(0x05000000, "TAV Ardix", "").Order(ByteOrder::BigEndian).Build(), 0};
    EXPECT_TRUE(swapped.succeeded);
    EXPECT_EQ(swapped.reader.software, L"Gatan Digital Micrograph");

    const MrcRead nameless{AcquiredFile(1, "", "").Order(ByteOrder::BigEndian).Build(), 0};
    EXPECT_EQ(nameless.reader.software, L"");
}

TEST(MrcReader, PrefersTheAcquisitionProgramToSerialEM)
{
    const auto file = AcquiredFile(5, "TAV Tomography", "4").Mode(0).Labels("SerialEM 4 bits packed");
    const MrcRead read{file.Build(), 0};
    EXPECT_EQ(read.reader.software, L"Tomography 4");
    EXPECT_EQ(read.reader.pixelType, PixelType::UInt4);
    EXPECT_TRUE(read.reader.flipVertical);
    EXPECT_THAT(read.lines, ElementsAre(packedSamples));
}

} // namespace
