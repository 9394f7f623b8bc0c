#include "core/RawImage.h"
#include "support/FileFacts.h"
#include "support/files/MrcFile.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

using namespace std::string_view_literals;

const std::string unknown = "[Lumora] Could not identify the file format";

static_assert(std::has_virtual_destructor_v<RawImage>);
static_assert(std::has_virtual_destructor_v<RawImageBase>);

/// A row of four 16-bit numbers.
MrcFile FourPixels()
{
    return MrcFile().Size(4, 1, 1).Mode(1).Numbers<int16_t>({-32768, -32512, -32511, 32767});
}

const FileFacts fourPixelFacts = {.fileType = FileType::Mrc,
                                  .pixelType = PixelType::Int16,
                                  .width = 4,
                                  .height = 1,
                                  .frameCount = 1,
                                  .formatDetails = L"MRC Mode 1"};

/// A stream of `size` bytes that begins with this text.
Bytes FileOf(std::string_view start, size_t size = 64)
{
    Bytes file(size);
    std::copy_n(start.begin(), std::min(start.size(), size), file.begin());
    return file;
}

/// What comes of looking for the reader of a stream.
struct Creation
{
    explicit Creation(IStream* stream)
    {
        DiagnosticLines diagnostics;
        reader.reset(RawImage::CreateReader(stream));
        lines = diagnostics.Take();
    }

    std::unique_ptr<RawImageBase> reader;
    Lines lines;
};

struct StartRow
{
    std::string_view start;
    /// Whether there is a reader for the format.
    bool isRead;
    /// The line with which the file is refused: by its reader, which may say nothing, or for want of one.
    std::string line;
};

/// Every format with a reader, every one that is refused by name, and some that nobody knows.
const StartRow startRows[] = {
    {"\4\0\0\0\1\0\0\0\1\0\0\0\1"sv, true, {}},
    {"\0\0\4\0\0\0\0\1\0\0\0\1\0\0\0\1"sv, true, {}},
    {"# PelixMesh "sv, true, "[Lumora] UBO: Unsupported header format"},
    {"# Vorna "sv, true, "[Lumora] UBO: Unsupported header format"},
    {"\0\0\0\3"sv, true, "[Lumora] DM3: Invalid checksum (number of bytes)"},
    {"\0\0\0\4"sv, true, "[Lumora] DM4: Invalid checksum (number of bytes)"},
    {"\x89HDF"sv, true, "[Lumora] HDF: Could not open file"},
    {"JK\0\2"sv, true, "[Lumora] EMI: No images found"},
    {"\x93NUMPY"sv, true, {}},
    {"TAV RawImage\0"sv, true, "[Lumora] RAW: Unsupported pixel type"},
    {"II\x97\1"sv, true, "[Lumora] SER: Too low version number"},
    {"\2\0\1\0\0\0\1"sv, true,
     "[Lumora] BIN: File size does not match with the image properties in the header"},
    {"BM\x36"sv, false, "[Lumora] Unsupported bitmap file format detected"},
    {"\xFF\xD8\xFF\xE0"sv, false, "[Lumora] Unsupported JPEG file format detected"},
    {"II*\0"sv, false, "[Lumora] Unsupported TIFF file format (little-endian) detected"},
    {"MM\0*"sv, false, "[Lumora] Unsupported TIFF file format (big-endian) detected"},
    {"\1\0\0\0\x6C\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0 EMF"sv, false,
     "[Lumora] Load request for not supported Enhanced MetaFile (EMF)"},
    {"\x89HDx"sv, false, unknown},
    {"II\x97\2"sv, false, unknown},
    {"MM\0+"sv, false, unknown},
    {"hello, world"sv, false, unknown},
};

TEST(CreateReader, MakesReadersAndRefusesAllElseInOneLine)
{
    for (const StartRow& row : startRows)
    {
        SCOPED_TRACE(testing::PrintToString(row.start));
        TestStream stream{FileOf(row.start)};
        const Creation creation{&stream};
        EXPECT_EQ(creation.reader != nullptr, row.isRead);
        EXPECT_EQ(creation.lines, row.isRead ? Lines{} : Lines{row.line});
        EXPECT_EQ(stream.references, 0U);

        RawImage image;
        DiagnosticLines diagnostics;
        EXPECT_FALSE(image.Open(&stream, readModeFrame, 0)) << "64 bytes hold no file of any format";
        EXPECT_EQ(image.Reader(), nullptr);
        EXPECT_EQ(diagnostics.Take(), row.line.empty() ? Lines{} : Lines{row.line});
    }
}

TEST(CreateReader, RefusesShortStreamsSilently)
{
    for (const StartRow& row : startRows)
    {
        for (const size_t size : {0U, 1U, 63U})
        {
            SCOPED_TRACE(testing::Message() << testing::PrintToString(row.start) << size);
            TestStream stream{FileOf(row.start, size)};
            const Creation creation{&stream};
            EXPECT_EQ(creation.reader, nullptr);
            EXPECT_EQ(creation.lines, Lines{});
            EXPECT_EQ(stream.readCalls, 0U);
        }
    }
}

TEST(CreateReader, RefusesNoStreamSilently)
{
    const Creation creation{nullptr};
    EXPECT_EQ(creation.reader, nullptr);
    EXPECT_EQ(creation.lines, Lines{});
}

TEST(CreateReader, RefusesStreamsThatFailSilently)
{
    struct Row
    {
        const char* what;
        StreamFaults faults;
    };
    const Row rows[] = {
        {"Stat fails", {.failStatAt = 1}},
        {"Seek fails", {.failSeekAt = 1}},
        {"Read fails", {.failReadAt = 1}},
        {"Read delivers 63 bytes", {.longestRead = 63}},
        {"Read reports 63 bytes", {.extraCountReported = -1}},
        {"Read reports 65 bytes", {.extraCountReported = 1}},
        {"Stat tells 63 bytes", {.reportedSize = 63}},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.what);
        TestStream stream{FourPixels().Build(), row.faults};
        const Creation creation{&stream};
        EXPECT_EQ(creation.reader, nullptr);
        EXPECT_EQ(creation.lines, Lines{});
        EXPECT_EQ(stream.references, 0U);
    }
}

TEST(CreateReader, FailsWhenTheStreamHoldsLessThanItClaims)
{
    TestStream stream{Bytes(63), {.reportedSize = 1000}};
    const Creation creation{&stream};
    EXPECT_EQ(creation.reader, nullptr);
    EXPECT_EQ(creation.lines, Lines{});
}

TEST(CreateReader, AcceptsOtherSuccessCodes)
{
    TestStream stream{FourPixels().Build(), {.success = S_FALSE}};
    EXPECT_NE(Creation{&stream}.reader, nullptr);
}

TEST(CreateReader, ReadsTheFirst64BytesWhereverTheStreamStands)
{
    TestStream stream{FourPixels().Build()};
    stream.position = 500;
    EXPECT_NE(Creation{&stream}.reader, nullptr);
    EXPECT_EQ(stream.position, 64U);
    EXPECT_EQ(stream.bytesRead, 64U);
    EXPECT_EQ(stream.statCalls, 1U);
    EXPECT_EQ(stream.statFlags, DWORD{STATFLAG_NONAME});
    EXPECT_EQ(stream.references, 0U);
}

TEST(CreateReader, GivesAReaderThatKnowsNothingYet)
{
    TestStream stream{FourPixels().Build()};
    const Creation creation{&stream};
    ASSERT_NE(creation.reader, nullptr);
    const RawImageBase& reader = *creation.reader;
    EXPECT_THAT(reader, HasFacts({}));
    EXPECT_EQ(reader.readMode, 1U);
    EXPECT_TRUE(reader.displayPixels.empty());
}

TEST(RawImage, HoldsNothingAtFirst)
{
    EXPECT_EQ(RawImage{}.Reader(), nullptr);
}

TEST(RawImage, OpensAFrame)
{
    TestStream stream{FourPixels().Build()};
    RawImage image;
    ASSERT_TRUE(image.Open(&stream, readModeFrame, 0));
    ASSERT_NE(image.Reader(), nullptr);
    EXPECT_THAT(*image.Reader(), HasFacts(fourPixelFacts));
    EXPECT_EQ(image.Reader()->readMode, 1U);
    EXPECT_EQ(image.Reader()->displayPixels, (Bytes{0, 0, 1, 255}));
    EXPECT_EQ(stream.references, 0U);
    EXPECT_EQ(stream.statFlags, DWORD{STATFLAG_NONAME});
}

TEST(RawImage, OpensAHeaderWithoutAPicture)
{
    TestStream stream{FourPixels().Build()};
    RawImage image;
    ASSERT_TRUE(image.Open(&stream, readModeHeader, 0));
    EXPECT_EQ(image.Reader()->readMode, 0U);
    EXPECT_THAT(*image.Reader(), HasFacts(fourPixelFacts));
    EXPECT_TRUE(image.Reader()->displayPixels.empty());
    EXPECT_EQ(stream.references, 0U);
}

TEST(RawImage, ReplacesItsReaderByEachNewOne)
{
    TestStream wide{FourPixels().Build()};
    TestStream narrow{MrcFile().Size(1, 2, 1).Mode(1).Numbers<int16_t>({1, 2}).Build()};
    RawImage image;
    ASSERT_TRUE(image.Open(&wide, readModeFrame, 0));
    ASSERT_TRUE(image.Open(&narrow, readModeHeader, 0));
    EXPECT_EQ(image.Reader()->width, 1U);
    EXPECT_TRUE(image.Reader()->displayPixels.empty());
    ASSERT_TRUE(image.Open(&wide, readModeFrame, 0));
    EXPECT_EQ(image.Reader()->width, 4U);
    EXPECT_EQ(image.Reader()->displayPixels.size(), 4U);
}

TEST(RawImage, HoldsNothingAfterAFileThatItCannotRead)
{
    TestStream good{FourPixels().Build()};
    TestStream unknownFile{FileOf("hello, world")};
    TestStream tooShort{FileOf("", 63)};
    TestStream damaged{FileOf("", 64)};
    for (TestStream* const bad : {&unknownFile, &tooShort, &damaged})
    {
        RawImage image;
        ASSERT_TRUE(image.Open(&good, readModeFrame, 0));
        EXPECT_FALSE(image.Open(bad, readModeFrame, 0));
        EXPECT_EQ(image.Reader(), nullptr);
        EXPECT_TRUE(image.Open(&good, readModeFrame, 0));
        EXPECT_NE(image.Reader(), nullptr);
    }
}

TEST(RawImage, HoldsNothingAfterAFrameThatIsNotThere)
{
    TestStream stream{FourPixels().Build()};
    RawImage image;
    EXPECT_FALSE(image.Open(&stream, readModeHeader, 1));
    EXPECT_EQ(image.Reader(), nullptr);
    EXPECT_EQ(stream.references, 0U);
}

TEST(RawImage, KeepsItsReaderWhenThereIsNoOtherStreamToOpen)
{
    TestStream good{FourPixels().Build()};
    TestStream mute{FourPixels().Build(), {.failStatAt = 1}};
    RawImage image;
    ASSERT_TRUE(image.Open(&good, readModeFrame, 0));
    const RawImageBase* const reader = image.Reader();
    EXPECT_FALSE(image.Open(nullptr, readModeFrame, 0));
    EXPECT_EQ(image.Reader(), reader);
    EXPECT_FALSE(image.Open(&mute, readModeFrame, 0));
    EXPECT_EQ(image.Reader(), reader);
}

TEST(FileType, KeepsItsPublishedValues)
{
    EXPECT_EQ(static_cast<uint32_t>(FileType::None), 0U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::PelixMesh), 1U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::VornaMesh), 2U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::Bin), 3U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::Dm3), 4U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::Dm4), 5U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::BinWithDataOffset), 6U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::Emi), 7U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::Hdf), 8U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::Mrc), 9U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::Mrc2014), 10U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::Npy), 11U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::Raw), 12U);
    EXPECT_EQ(static_cast<uint32_t>(FileType::Ser), 13U);
    EXPECT_EQ(static_cast<uint32_t>(ByteOrder::LittleEndian), 0U);
    EXPECT_EQ(static_cast<uint32_t>(ByteOrder::BigEndian), 1U);
}

} // namespace
