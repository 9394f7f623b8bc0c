#include "core/ReaderFactory.h"
#include "formats/RawImageEmi.h"
#include "formats/RawImageNpy.h"
#include "formats/RawImageRaw.h"
#include "formats/RawImageSer.h"
#include "formats/bin/RawImageBin.h"
#include "formats/dm/RawImageDm.h"
#include "formats/hdf/RawImageHdf.h"
#include "formats/lattice/RawImageUbo.h"
#include "formats/mrc/RawImageMrc.h"
#include "support/FileFacts.h"
#include "support/files/MrcFile.h"
#include "support/files/RawFile.h"
#include "support/files/SerFile.h"
#include "support/gray/GrayFiles.h"
#include "support/gray/GrayStack.h"
#include "support/streams/DamagedFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <span>
#include <stdexcept>
#include <typeindex>

// What all readers do alike, whatever their formats.

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A file, and what the reader of its format makes of it.
struct ReaderRow
{
    const char* name;
    std::type_index reader;
    Bytes file;
    /// The picture of each frame.
    std::vector<Bytes> pictures;
    /// The facts, the same for each frame.
    FileFacts facts;
    /// The line for a frame that the file does not have, and the facts that are known by then.
    std::string refusal;
    FileFacts factsAtRefusal;
    /// The facts that are known before the stream is read.
    FileFacts factsAtOnce;
    /// The lines that come with the first frame, and those that come with each picture.
    Lines firstLines = {};
    Lines pictureLines = {};
};

void PrintTo(const ReaderRow& row, std::ostream* out)
{
    *out << row.name;
}

ReaderRow Row(const char* name, std::type_index reader, const GrayFile& file, const FileFacts& facts,
              const char* refusal, const FileFacts& factsAtRefusal, const FileFacts& factsAtOnce)
{
    return {name, reader, file.content, file.pictures, facts, refusal, factsAtRefusal, factsAtOnce};
}

const GrayFile& Gray(const char* name)
{
    static const std::vector<GrayFile> files = GrayFiles();
    return *std::ranges::find(files, name, &GrayFile::name);
}

constexpr auto uint16 = PixelType::UInt16;

ReaderRow MrcRow()
{
    return Row("Mrc", typeid(RawImageMrc), {"", GrayStack(2), {grayPictures[0], grayPictures[1]}, L"", L""},
               {FileType::Mrc, uint16, 4, 2, 2, false, L"", L"MRC Mode 6"},
               "[Lumora] MRC: Frame index is out of range", {FileType::Mrc, uint16, 4, 2, 2},
               {FileType::Mrc});
}

ReaderRow BigEndianMrcRow()
{
    MrcFile file = MrcFile().Order(ByteOrder::BigEndian).Size(2, 2, 2).Mode(6).Version(20140);
    file.Numbers<uint16_t>({0, 1, 2, 255, 305, 50, 105, 60});
    const std::wstring gatan = L"Gatan Digital Micrograph";
    constexpr auto big = ByteOrder::BigEndian;
    ReaderRow row = Row("MrcBigEndian", typeid(RawImageMrc),
                        {"", file.Build(), {{2, 255, 0, 1}, {55, 10, 255, 0}}, L"", L""},
                        {FileType::Mrc2014, uint16, 2, 2, 2, true, gatan, L"MRC2014 Mode 6", big},
                        "[Lumora] MRC: Frame index is out of range",
                        {FileType::Mrc, uint16, 2, 2, 2, true, gatan, L"", big}, {FileType::Mrc});
    row.pictureLines = {"[Lumora] Big endian byte ordering"};
    return row;
}

ReaderRow DmRow(const char* name, std::type_index reader, const GrayFile& file, FileType fileType,
                const char* refusal)
{
    const std::wstring gatan = L"Gatan Digital Micrograph";
    const FileFacts known = {.fileType = fileType, .software = gatan};
    ReaderRow row = Row(name, reader, file, {fileType, uint16, 4, 2, 1, false, gatan}, refusal, known, known);
    row.firstLines = {"[Lumora] DM: The embedded thumbnail will be ignored"};
    return row;
}

ReaderRow HdfRow()
{
    return Row("Hdf", typeid(RawImageHdf), Gray("gray.h5"),
               {FileType::Hdf, uint16, 32, 32, 3, false, L"Frame 2.10", L"Data version: Frame 1.1"},
               "[Lumora] HDF: Frame index is out of range", {FileType::Hdf}, {FileType::Hdf});
}

/// Version 0x0210 has offsets of 4 bytes, every later one has offsets of 8.
ReaderRow SerRow(const char* name, uint16_t version)
{
    SerFile file = SerFile().Version(version).Element({2, 2, 2, {0, 1, 100, 1, 200, 1, 255, 1}});
    file.Element({2, 2, 2, {255, 0, 5, 0, 3, 0, 0, 0}});
    const FileFacts known = {.fileType = FileType::Ser, .software = L"Pellox"};
    return Row(name, typeid(RawImageSer), {"", file.Build(), {{200, 255, 0, 100}, {3, 0, 255, 5}}, L"", L""},
               {FileType::Ser, uint16, 2, 2, 2, true, L"Pellox"}, "[Lumora] SER: Frame index is out of range",
               known, known);
}

ReaderRow EmiRow()
{
    const std::wstring version = L"Pellox 4.3.0.123";
    const std::wstring newer = L"Requires Pellox 4.15.0.2311 or later";
    return Row("Emi", typeid(RawImageEmi), Gray("gray.emi"),
               {FileType::Emi, uint16, 4, 8, 2, true, version, newer},
               "[Lumora] EMI: Frame index is out of range",
               {.fileType = FileType::Emi, .frameCount = 2, .software = version, .formatDetails = newer},
               {.fileType = FileType::Emi, .software = L"Pellox"});
}

ReaderRow RawRow()
{
    return Row("Raw", typeid(RawImageRaw), Gray("gray.raw"), {FileType::Raw, uint16, 4, 8, 1},
               "[Lumora] RAW: Invalid frame index", {FileType::Raw, PixelType::Unknown, 4, 8, 1},
               {FileType::Raw});
}

/// Samples that are stored column by column.
ReaderRow RawRowWithStrides()
{
    RawFile file = RawFile().Size(3, 2).Strides(4, 2).Gap(5);
    file.Samples(16, RawFile::Unsigned, {0, 0, 3, 0, 1, 0, 4, 0, 2, 0, 255, 0});
    return Row("RawWithStrides", typeid(RawImageRaw), {"", file.Build(), {{0, 1, 2, 3, 4, 255}}, L"", L""},
               {FileType::Raw, uint16, 3, 2, 1, false, L"", L"", ByteOrder::LittleEndian, 4, 2},
               "[Lumora] RAW: Invalid frame index", {FileType::Raw, PixelType::Unknown, 3, 2, 1},
               {FileType::Raw});
}

ReaderRow LatticeRow(const char* name, const GrayFile& file, const FileFacts& facts)
{
    return Row(name, typeid(RawImageUbo), file, facts, "[Lumora] UBO: Frame index is out of range", facts,
               {});
}

/// The readers that take their fields from the stream one by one.
std::vector<ReaderRow> FieldReaderRows()
{
    const FileFacts npy = {FileType::Npy, uint16, 4, 2, 3};
    return {
        MrcRow(),
        BigEndianMrcRow(),
        DmRow("Dm3", typeid(RawImageDm3), Gray("gray.dm3"), FileType::Dm3, "[Lumora] DM3: No images found"),
        DmRow("Dm4", typeid(RawImageDm4), Gray("gray.dm4"), FileType::Dm4, "[Lumora] DM4: No images found"),
        SerRow("Ser", 0x0210),
        SerRow("SerWithLongOffsets", 0x0220),
        EmiRow(),
        Row("Npy", typeid(RawImageNpy), Gray("gray.npy"), npy, "[Lumora] NPY: Frame index is out of range",
            npy, {}),
        RawRow(),
        RawRowWithStrides(),
        Row("Bin", typeid(RawImageBin), Gray("short.bin"), {FileType::Bin, uint16, 4, 8, 1},
            "[Lumora] BIN: Invalid frame index", {FileType::Bin, uint16, 4, 8, 1}, {FileType::Bin}),
        Row("BinWithDataOffset", typeid(RawImageBin), Gray("gray.bin"),
            {FileType::BinWithDataOffset, uint16, 4, 2, 1}, "[Lumora] BIN: Invalid frame index",
            {FileType::Bin, uint16, 4, 2, 1}, {FileType::Bin}),
        LatticeRow("LatticeOfVorna", Gray("vorna.lattice"),
                   {FileType::VornaMesh, uint16, 4, 2, 2, false, L"Vorna"}),
        LatticeRow("LatticeOfPelix", Gray("pelix.lattice"),
                   {FileType::PelixMesh, uint16, 4, 2, 4, false, L"Pelix"}),
    };
}

/// A new reader for the file of a row.
std::unique_ptr<RawImageBase> ReaderOf(const ReaderRow& row)
{
    return MakeReader(std::span<const uint8_t>{row.file}.first<identificationBytes>());
}

/// One read of a file by the reader of a row, which stays here after a failure.
struct RowRead
{
    RowRead(const ReaderRow& row, const Bytes& file, uint32_t mode, uint32_t frameIndex,
            StreamFaults faults = {})
        : stream(file, faults), reader(ReaderOf(row))
    {
        DiagnosticLines diagnostics;
        succeeded = reader->Read(&stream, file.size(), mode, frameIndex);
        lines = diagnostics.Take();
        EXPECT_EQ(stream.references, 0U);
    }

    TestStream stream;
    std::unique_ptr<RawImageBase> reader;
    bool succeeded = false;
    Lines lines;
};

class ReaderContract : public testing::TestWithParam<ReaderRow>
{
protected:
    const ReaderRow& row = GetParam();

    /// The lines of a read that finds no fault.
    [[nodiscard]] Lines LinesOf(uint32_t mode, uint32_t frameIndex) const
    {
        Lines lines = frameIndex == 0 ? row.firstLines : Lines{};
        if (mode != 0)
            lines.insert(lines.end(), row.pictureLines.begin(), row.pictureLines.end());
        return lines;
    }
};

TEST_P(ReaderContract, TellsTheFactsInEveryModeAndShowsTheFramesUnlessItIsZero)
{
    for (const uint32_t mode : {0U, 1U, 2U, 0xFFFFFFFFU})
        for (uint32_t i = 0; i < row.facts.frameCount; ++i)
        {
            SCOPED_TRACE(testing::Message() << "frame " << i << " in mode " << mode);
            const RowRead read{row, row.file, mode, i};
            EXPECT_TRUE(read.succeeded);
            EXPECT_EQ(read.lines, LinesOf(mode, i));
            EXPECT_THAT(*read.reader, HasFacts(row.facts));
            EXPECT_EQ(read.reader->readMode, mode);
            EXPECT_EQ(read.reader->displayPixels, mode == 0 ? Bytes{} : row.pictures.at(i));
        }
}

TEST_P(ReaderContract, IsChosenByTheFirstBytesOfItsFiles)
{
    for (const uint32_t mode : {0U, 1U})
    {
        const FileOpen open{row.file, mode};
        ASSERT_TRUE(open.succeeded);
        const RawImageBase& reader = *open.image.Reader();
        EXPECT_TRUE(std::type_index{typeid(reader)} == row.reader);
        EXPECT_THAT(reader, HasFacts(row.facts));
        EXPECT_EQ(reader.displayPixels, mode == 0 ? Bytes{} : row.pictures.front());
        EXPECT_EQ(open.lines, LinesOf(mode, 0));
    }
}

TEST_P(ReaderContract, RefusesAFrameThatTheFileDoesNotHave)
{
    const uint32_t frameCount = row.facts.frameCount;
    for (const uint32_t mode : {0U, 1U})
        for (const uint32_t i : {frameCount, frameCount + 1, 0x80000000U, 0xFFFFFFFFU})
        {
            SCOPED_TRACE(testing::Message() << "frame " << i << " in mode " << mode);
            const RowRead read{row, row.file, mode, i};
            EXPECT_FALSE(read.succeeded);
            EXPECT_THAT(read.lines, ElementsAre(row.refusal));
            EXPECT_THAT(*read.reader, HasFacts(row.factsAtRefusal));
            EXPECT_THAT(read.reader->displayPixels, IsEmpty());
        }
}

std::string NameOf(const testing::TestParamInfo<ReaderRow>& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Fields, ReaderContract, testing::ValuesIn(FieldReaderRows()), NameOf);
INSTANTIATE_TEST_SUITE_P(WholeFile, ReaderContract, testing::Values(HdfRow()), NameOf);

/// The HDF5 library gets the whole file instead, and fails in its own ways.
class FieldReaderContract : public ReaderContract
{};

TEST_P(FieldReaderContract, ReadsAFileOrNotAtEveryLength)
{
    for (size_t length = 0; length <= row.file.size(); ++length)
        for (const uint32_t i : {0U, row.facts.frameCount - 1})
        {
            const Bytes file = FirstBytes(row.file, length);
            const RowRead header{row, file, 0, i};
            const RowRead frame{row, file, 1, i};
            ExpectSaneReads(header.succeeded ? header.reader.get() : nullptr, header.lines,
                            frame.succeeded ? frame.reader.get() : nullptr, frame.lines, i, length);
        }
}

TEST_P(FieldReaderContract, PassesOnWhatKeepsTheStreamFromBeingRead)
{
    const auto reader = ReaderOf(row);
    EXPECT_THROW((void)reader->Read(nullptr, 2048, 0, 0), std::invalid_argument);
    EXPECT_THAT(*reader, HasFacts(row.factsAtOnce));
    // A reader that knows nothing yet has its first mode, too.
    EXPECT_EQ(reader->readMode, row.factsAtOnce.fileType == FileType::None ? 1U : 0U);

    const auto size = static_cast<uint32_t>(row.file.size());
    for (const StreamFaults& faults :
         {StreamFaults{.failStatAt = 1}, StreamFaults{.failSeekAt = 1}, StreamFaults{.failReadAt = 1},
          StreamFaults{.longestRead = size - 1}, StreamFaults{.reportedSize = size + 1}})
    {
        TestStream stream{row.file, faults};
        const auto other = ReaderOf(row);
        EXPECT_THROW((void)other->Read(&stream, size, 1, 0), std::runtime_error);
        EXPECT_THAT(*other, HasFacts(row.factsAtOnce));
        EXPECT_EQ(stream.references, 0U);
    }
}

TEST_P(FieldReaderContract, SaysWhenTheFrameCannotBeRead)
{
    for (uint32_t i = 0; i < row.facts.frameCount; ++i)
        for (const FailingStreamCall call :
             {&StreamFaults::failStatAt, &StreamFaults::failSeekAt, &StreamFaults::failReadAt})
        {
            StreamFaults faults;
            faults.*call = 2;
            const RowRead header{row, row.file, 0, i, faults};
            EXPECT_TRUE(header.succeeded);
            EXPECT_EQ(header.lines, LinesOf(0, i));

            const RowRead frame{row, row.file, 1, i, faults};
            EXPECT_FALSE(frame.succeeded);
            Lines lines = LinesOf(1, i);
            lines.push_back(cannotReadImage);
            EXPECT_EQ(frame.lines, lines);
            EXPECT_THAT(*frame.reader, HasFacts(row.facts));
            EXPECT_THAT(frame.reader->displayPixels, IsEmpty());
        }
}

INSTANTIATE_TEST_SUITE_P(Fields, FieldReaderContract, testing::ValuesIn(FieldReaderRows()), NameOf);

} // namespace
