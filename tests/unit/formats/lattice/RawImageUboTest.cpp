#include "formats/lattice/RawImageUbo.h"
#include "support/FileFacts.h"
#include "support/files/LatticeFile.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using LatticeRead = FileRead<RawImageUbo>;

namespace {

const std::string unsupportedHeader = "[Lumora] UBO: Unsupported header format";
const std::string noDimensions = "[Lumora] UBO: No valid image dimensions found";
const std::string compressed = "[Lumora] UBO: Data compression is not supported";

struct MagicRow
{
    const char* line;
    FileType fileType;
    const wchar_t* software;
};

TEST(LatticeReader, TellsThePelixVariantByTheFourthCharacter)
{
    constexpr MagicRow rows[] = {
        {"# Vorna 1.0", FileType::VornaMesh, L"Vorna"},
        {"# PelixMesh 1.0", FileType::PelixMesh, L"Pelix"},
        // Nothing else of the line is looked at.
        {"# Pelix", FileType::PelixMesh, L"Pelix"},
        {"xyze", FileType::PelixMesh, L"Pelix"},
        {"# Velix", FileType::PelixMesh, L"Pelix"},
        {"# PElix", FileType::VornaMesh, L"Vorna"},
        {"# Porna", FileType::VornaMesh, L"Vorna"},
        {"#  Pelix", FileType::VornaMesh, L"Vorna"},
        {"\n\n\nelix", FileType::PelixMesh, L"Pelix"},
    };
    for (const MagicRow& row : rows)
        for (const uint32_t mode : {0U, 1U})
        {
            const LatticeRead read{LatticeFile().Magic(row.line).Samples({7}).Build(), mode};
            EXPECT_TRUE(read.succeeded) << row.line;
            EXPECT_EQ(read.reader.fileType, row.fileType) << row.line;
            EXPECT_EQ(read.reader.software, row.software) << row.line;
        }
}

TEST(LatticeReader, IsNotChosenForAnotherProgram)
{
    const FileOpen other{LatticeFile().Magic("# Pelix BINARY").Samples({7}).Build()};
    EXPECT_FALSE(other.succeeded);
    EXPECT_THAT(other.lines, ElementsAre("[Lumora] Could not identify the file format"));
}

struct TypeRow
{
    const char* word;
    PixelType pixelType;
};

TEST(LatticeReader, TakesTheSampleTypeFromTheTypeLine)
{
    constexpr TypeRow rows[] = {
        {"byte", PixelType::UInt8}, {"ushort", PixelType::UInt16}, {"short", PixelType::Int16},
        {"int", PixelType::Int32},  {"float", PixelType::Float32}, {"double", PixelType::Double64},
    };
    for (const TypeRow& row : rows)
    {
        const LatticeRead read{LatticeFile().Type(row.word).Samples(Bytes(8)).Build(), 0};
        EXPECT_TRUE(read.succeeded) << row.word;
        EXPECT_EQ(read.reader.pixelType, row.pixelType) << row.word;
    }
}

struct FailureRow
{
    const char* what;
    LatticeFile file;
    std::string line;
};

TEST(LatticeReader, SaysWhyItRefusesAFile)
{
    const FailureRow rows[] = {
        {"no type line", LatticeFile().TypeLine(""), unsupportedHeader},
        {"no known type", LatticeFile().Type("complex"), unsupportedHeader},
        {"no dimensions", LatticeFile().Definition(""), unsupportedHeader},
        {"two dimensions", LatticeFile().Definition("define Lattice 4 4"), unsupportedHeader},
        {"not a number", LatticeFile().Definition("define Lattice 4 4 x"), unsupportedHeader},
        {"a number that does not fit", LatticeFile().Definition("define Lattice 4 4 4294967296"),
         unsupportedHeader},
        {"no columns", LatticeFile().Size(0, 4, 4), noDimensions},
        {"no rows", LatticeFile().Size(4, 0, 4), noDimensions},
        {"no slices", LatticeFile().Size(4, 4, 0), noDimensions},
        {"runs of equal bytes", LatticeFile().TypeLine("Lattice byte @1(HxByteRLE,5)"), compressed},
        {"deflated data", LatticeFile().TypeLine("Lattice byte @1(HxZip,5)"), compressed},
        // The first trouble is the one that is told.
        {"no rows, no type", LatticeFile().Size(4, 0, 4).Type("complex"), unsupportedHeader},
        {"no columns, deflated", LatticeFile().Size(0, 4, 4).TypeLine("Lattice byte @1(HxZip,5)"),
         noDimensions},
        {"deflated, too wide", LatticeFile().Size(65536, 1, 1).TypeLine("Lattice byte @1(HxZip,5)"),
         compressed},
    };
    for (const FailureRow& row : rows)
        for (const uint32_t frameIndex : {0U, 100U})
            ExpectRefusal<RawImageUbo>(
                LatticeFile{row.file}.Samples(Bytes(70000)).Build(), {row.line}, row.what,
                testing::AllOf(testing::Field(&RawImageBase::fileType, FileType::VornaMesh),
                               testing::Field(&RawImageBase::software, L"Vorna")),
                frameIndex);
}

TEST(LatticeReader, LeavesTheLargestPictureToTheConversion)
{
    constexpr uint32_t sizes[][3] = {{65536, 1, 1},      {1, 65536, 1},         {0xFFFFFFFF, 1, 1},
                                     {1, 0xFFFFFFFF, 1}, {65536, 65536, 65536}, {0xFFFFFFFF, 0xFFFFFFFF, 1}};
    for (const auto& [x, y, z] : sizes)
    {
        const Bytes file = LatticeFile().Size(x, y, z).Type("double").Samples(Bytes(70000)).Build();
        const uint32_t frameCount = z > 2 ? z + 1 : z;
        ExpectFactsWithoutFrame<RawImageUbo>(
            file, 0, invalidResolution,
            HasFacts({FileType::VornaMesh, PixelType::Double64, x, y, frameCount, false, L"Vorna"}));
    }
    EXPECT_TRUE(LatticeRead(LatticeFile().Size(65535, 1, 1).Samples(Bytes(65535)).Build()).succeeded);
}

TEST(LatticeReader, TakesZeroBytesOfTheHeaderForSpaces)
{
    Bytes file = LatticeFile().Size(4, 3, 2).Type("float").Samples(Bytes(96)).Build();
    const size_t headerBytes = LatticeFile().Size(4, 3, 2).Type("float").Header().size();
    for (size_t i = 0; i < headerBytes; ++i)
        if (file[i] == ' ')
            file[i] = 0;
    const LatticeRead read{file};

    EXPECT_TRUE(read.succeeded);
    EXPECT_THAT(read.reader, HasFacts({FileType::VornaMesh, PixelType::Float32, 4, 3, 2, false, L"Vorna"}));
}

TEST(LatticeReader, TakesLinesThatAreSurroundedByZeroBytes)
{
    Bytes file(1000, 0);
    const Bytes lattice = LatticeFile().LineEnd(std::string("\0\0\n\0\0", 5)).Samples({7}).Build();
    file.insert(file.end(), lattice.begin(), lattice.end());
    const LatticeRead read{file};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.software, L"Vorna");
}

/// A file whose "@1" ends at this place. Spaces fill the line before.
Bytes FileWithHeaderOf(size_t headerBytes)
{
    const LatticeFile file = LatticeFile().Size(2, 2, 1);
    const size_t spaces = headerBytes - file.Header().size();
    return LatticeFile{file}.DataMark(std::string(spaces, ' ') + "@1").Samples({0, 64, 128, 255}).Build();
}

TEST(LatticeReader, LooksForTheDataInTheFirst262143Bytes)
{
    for (const size_t headerBytes :
         {size_t{1000}, size_t{262138}, size_t{262139}, size_t{262142}, size_t{262143}})
    {
        const LatticeRead read{FileWithHeaderOf(headerBytes)};
        EXPECT_TRUE(read.succeeded) << headerBytes;
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 64, 128, 255)) << headerBytes;
    }
    // Beyond that place the header has no end, and the picture is its first text, "# Vo": 35, 32, 86 and 111,
    // stretched from 31...111 to 0...255.
    for (const size_t headerBytes : {size_t{262144}, size_t{262145}, size_t{300000}})
    {
        const LatticeRead read{FileWithHeaderOf(headerBytes)};
        EXPECT_TRUE(read.succeeded) << headerBytes;
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(12, 3, 175, 255)) << headerBytes;
    }
}

TEST(LatticeReader, ReadsOnBehindAFloodOfAnyCharacterAsFarAsItReadsAtAll)
{
    for (const char character : {'{', '}', ' ', '\0', '\t', '\r', '\n', 'L', '@', '"', '\xFF'})
    {
        const auto flooded = [character](size_t length) {
            return LatticeFile().Magic("# Vorna " + std::string(length, character)).Samples({7}).Build();
        };
        EXPECT_TRUE(LatticeRead(flooded(1000)).succeeded) << int{character};
        EXPECT_TRUE(LatticeRead(flooded(262000)).succeeded) << int{character};
        const LatticeRead read{flooded(262143)};
        EXPECT_FALSE(read.succeeded) << int{character};
        EXPECT_THAT(read.lines, ElementsAre(unsupportedHeader)) << int{character};
    }
}

TEST(LatticeReader, RefusesAnEmptyFile)
{
    ExpectRefusal<RawImageUbo>({}, {unsupportedHeader}, "",
                               HasFacts({.fileType = FileType::VornaMesh, .software = L"Vorna"}));
}

TEST(LatticeReader, FailsSilentlyWhenTheHeaderCannotBeRead)
{
    // The stream has become shorter since its size was asked for.
    TestStream stream{LatticeFile().Samples({7}).Build()};
    RawImageUbo reader;
    DiagnosticLines diagnostics;
    EXPECT_FALSE(reader.Read(&stream, stream.bytes.size() + 1, 1, 0));
    EXPECT_THAT(diagnostics.Take(), IsEmpty());
    EXPECT_EQ(reader.fileType, FileType::VornaMesh);
}

} // namespace
