#include "support/ParsedHeader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace Tav::Imaging::RawImage;

namespace {

TEST(LatticeHeader, TellsDimensionsTypeAndPlaceOfTheData)
{
    const ParsedHeader parsed{"# Vorna 1.0\n"                //  0
                              "define Lattice 40 3 2\n"      // 12
                              "Lattice { ushort Data } @1\n" // 34
                              "# Data section follows\n"     // 61
                              "@1\n"                         // 84
                              "\1\2\3"};

    EXPECT_TRUE(parsed.understood);
    EXPECT_EQ(parsed.dimensionX, 40U);
    EXPECT_EQ(parsed.dimensionY, 3U);
    EXPECT_EQ(parsed.dimensionZ, 2U);
    EXPECT_EQ(parsed.sampleType, PixelType::UInt16);
    EXPECT_FALSE(parsed.isCompressed);
    EXPECT_EQ(parsed.dataOffset, 87U);
    EXPECT_TRUE(parsed.parameters.empty());
}

TEST(LatticeHeader, EndsLinesWithLineFeedsOrCarriageReturns)
{
    // Each of the four lines before "@1" is one character longer, and the line feed of the last is data.
    EXPECT_EQ(ParsedHeader(LatticeFile().LineEnd("\n")).dataOffset, 84U);
    EXPECT_EQ(ParsedHeader(LatticeFile().LineEnd("\r")).dataOffset, 84U);
    EXPECT_EQ(ParsedHeader(LatticeFile().LineEnd("\r\n")).dataOffset, 88U);
    EXPECT_EQ(ParsedHeader(LatticeFile().LineEnd("\n\r")).dataOffset, 88U);
    for (const char* lineEnd : {"\n", "\r", "\r\n", "\n\r", "\n\n\n", " \n ", "\t\v\f \r \n"})
    {
        const ParsedHeader parsed{LatticeFile().Size(4, 3, 2).Type("float").LineEnd(lineEnd)};
        EXPECT_TRUE(parsed.understood);
        EXPECT_EQ(parsed.dimensionX, 4U);
        EXPECT_EQ(parsed.dimensionY, 3U);
        EXPECT_EQ(parsed.dimensionZ, 2U);
        EXPECT_EQ(parsed.sampleType, PixelType::Float32);
    }
}

struct TypeRow
{
    const char* line;
    PixelType sampleType;
};

TEST(LatticeHeader, TakesTheFirstKnownWordOfTheTypeLine)
{
    constexpr TypeRow rows[] = {
        {"Lattice { byte Data } @1", PixelType::UInt8},
        {"Lattice { ushort Data } @1", PixelType::UInt16},
        {"Lattice { short Data } @1", PixelType::Int16},
        {"Lattice { int Data } @1", PixelType::Int32},
        {"Lattice { float Data } @1", PixelType::Float32},
        {"Lattice { double Data } @1", PixelType::Double64},
        // Nothing but the start and the word is needed, and the word may be part of another.
        {"Lattice float", PixelType::Float32},
        {"Latticefloat", PixelType::Float32},
        {"Lattices of doubles", PixelType::Double64},
        {"Lattice { uint Data } @1", PixelType::Int32},
        {"Lattice { Points } @1", PixelType::Int32},
        {"Lattice @1 ushort", PixelType::UInt16},
        {"  \tLattice { short Data } @1 \t ", PixelType::Int16},
        // The order of the words counts, not their place in the line.
        {"Lattice { ushort byte }", PixelType::UInt8},
        {"Lattice { short ushort }", PixelType::UInt16},
        {"Lattice { int short }", PixelType::Int16},
        {"Lattice { float int }", PixelType::Int32},
        {"Lattice { double float }", PixelType::Float32},
    };
    for (const TypeRow& row : rows)
    {
        const ParsedHeader parsed{LatticeFile().TypeLine(row.line)};
        EXPECT_TRUE(parsed.understood) << row.line;
        EXPECT_EQ(parsed.sampleType, row.sampleType) << row.line;
    }
}

TEST(LatticeHeader, IsNotUnderstoodWithoutATypeLine)
{
    for (const char* line :
         {"", "Lattice", "Lattice { } @1", "Lattice { complex Data } @1", "Lattice { BYTE Data } @1",
          "Lattice { Float Data } @1", "Lattice { by te } @1", "lattice { byte Data } @1",
          "LATTICE { byte Data } @1", "A Lattice { byte Data } @1", "# Lattice { byte Data } @1",
          "Lattic { byte Data } @1", "{ Lattice byte }", "Lattice {\nbyte Data } @1"})
        EXPECT_FALSE(ParsedHeader(LatticeFile().TypeLine(line)).understood) << line;
}

TEST(LatticeHeader, SkipsLatticeLinesWithoutAKnownWord)
{
    const ParsedHeader parsed{LatticeFile().TypeLine("Lattice { complex Data } @1(HxZip,5)\n"
                                                     "byte\n"
                                                     "Lattice\n"
                                                     "Lattice { double Data } @1\n"
                                                     "Lattice { byte Data } @1(HxZip,5)")};
    EXPECT_TRUE(parsed.understood);
    EXPECT_EQ(parsed.sampleType, PixelType::Double64);
    EXPECT_FALSE(parsed.isCompressed);
}

struct CompressionRow
{
    const char* line;
    bool isCompressed;
};

TEST(LatticeHeader, TellsCompressedDataByTheTextBehindTheMark)
{
    constexpr CompressionRow rows[] = {
        {"Lattice { byte Data } @1(HxZip,1234)", true},
        {"Lattice { byte Data } @1(HxByteRLE,1234)", true},
        {"Lattice { byte Data } @1 ( HxZip,1234)", false},
        {"Lattice { byte Data } @1 (HxZip,1234) and more", true},
        {"Lattice { byte Data } @1 text (hxzip,1234)", true},
        {"Lattice { byte Data } @1(HXBYTERLE,1234)", true},
        {"Lattice { byte Data } @1(hXbYTErle,text)", true},
        {"Lattice byte@1(HxZip, 1234)", true},
        {"Lattice { byte Data } @12(HxZip,1234)", true},
        // One item, or three.
        {"Lattice { byte Data } @1(HxZip)", false},
        {"Lattice { byte Data } @1(HxZip,)", false},
        {"Lattice { byte Data } @1(HxZip,,)", true},
        {"Lattice { byte Data } @1(HxByteRLE)", false},
        {"Lattice { byte Data } @1(1234)", false},
        {"Lattice { byte Data } @1()", false},
        {"Lattice { byte Data } @1(HxZip,1,2)", false},
        {"Lattice { byte Data } @1(HxZip,,2)", false},
        // Another word, or the right one in the wrong place.
        {"Lattice { byte Data } @1(Zip,1234)", false},
        {"Lattice { byte Data } @1(HxZip2,1234)", false},
        {"Lattice { byte Data } @1(HxZip ,1234)", false},
        {"Lattice { byte Data } @1(HxByteRL,1234)", false},
        {"Lattice { byte Data } @1(1234,HxZip)", false},
        {"Lattice { byte Data } @1(,HxZip)", false},
        {"Lattice { byte Data } @1 HxZip,1234", false},
        {"Lattice { byte Data } @1(HxZip,1234", false},
        {"Lattice { byte Data } @1 HxZip,1234)", false},
        {"Lattice { byte Data } (HxZip,1234)", false},
        {"Lattice { byte Data } (HxZip,1234) @1", false},
        {"Lattice { byte Data } @2(HxZip,1234)", false},
        // Only the first parentheses behind the first mark.
        {"Lattice { byte Data } @1(HxZip,1234)(5)", true},
        {"Lattice { byte Data } @1(5)(HxZip,1234)", false},
        {"Lattice { byte Data } (5) @1(HxZip,1234)", true},
        {"Lattice { byte Data } @1(5) @1(HxZip,1234)", false},
    };
    for (const CompressionRow& row : rows)
    {
        const ParsedHeader parsed{LatticeFile().TypeLine(row.line)};
        EXPECT_TRUE(parsed.understood) << row.line;
        EXPECT_EQ(parsed.sampleType, PixelType::UInt8) << row.line;
        EXPECT_EQ(parsed.isCompressed, row.isCompressed) << row.line;
    }
}

struct DimensionsRow
{
    const char* line;
    uint32_t x;
    uint32_t y;
    uint32_t z;
};

TEST(LatticeHeader, TakesThreeDecimalNumbersForTheDimensions)
{
    constexpr DimensionsRow rows[] = {
        {"define Lattice 64 48 32", 64, 48, 32},
        {"define Lattice 0 0 0", 0, 0, 0},
        {"define Lattice 007 00 1", 7, 0, 1},
        {"define Lattice 4294967295 4294967295 4294967295", 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},
        {" \t define Lattice 1 2 3 \v\f", 1, 2, 3},
        // Only the first such line counts.
        {"define Lattice 1 2 3\ndefine Lattice 4 5 6", 1, 2, 3},
        {"define Lattices 1 2 3\ndefine Lattice 4 5 6", 4, 5, 6},
        {"define lattice 1 2 3\ndefine Lattice 4 5 6", 4, 5, 6},
        {"# define Lattice 1 2 3\ndefine Lattice 4 5 6", 4, 5, 6},
    };
    for (const DimensionsRow& row : rows)
    {
        const ParsedHeader parsed{LatticeFile().Definition(row.line)};
        EXPECT_TRUE(parsed.understood) << row.line;
        EXPECT_EQ(parsed.dimensionX, row.x) << row.line;
        EXPECT_EQ(parsed.dimensionY, row.y) << row.line;
        EXPECT_EQ(parsed.dimensionZ, row.z) << row.line;
    }
}

TEST(LatticeHeader, IsNotUnderstoodWithoutThreeDimensions)
{
    for (const char* line : {
             "",
             "define Lattice",
             "define Lattice 1",
             "define Lattice 1 2",
             "define Lattice 1 2 3 4",
             "define Lattice 1  2",
             "define Lattice 1  2 3",
             "define Lattice 1 2  3",
             "define Lattice  2 3",
             "define Lattice +1 2 3",
             "define Lattice 1,2,3",
             "define Lattice 1 2,3",
             "define Lattice 1\t2\t3",
             "define Lattice\t1 2 3",
             "define  Lattice 1 2 3",
             "define Lattices 1 2 3",
             "defineLattice 1 2 3",
             "define lattice 1 2 3",
             "Define Lattice 1 2 3",
             "# define Lattice 1 2 3",
             "Lattice 1 2 3",
             "define Lattice { 1 2 3",
             // No decimal numbers below 2^32.
             "define Lattice 1 2 x",
             "define Lattice x 2 3",
             "define Lattice 1 0x2 3",
             "define Lattice 1 2.0 3",
             "define Lattice -1 2 3",
             "define Lattice 1 2 3,",
             "define Lattice 1 2x 3",
             "define Lattice 4294967296 2 3",
             "define Lattice 1 4294967296 3",
             "define Lattice 1 2 4294967296",
             "define Lattice 1 2 18446744073709551617",
             "define Lattice 1 2 99999999999999999999999999999999999999",
             // A later line does not help.
             "define Lattice 1 2\ndefine Lattice 1 2 3",
         })
        EXPECT_FALSE(ParsedHeader(LatticeFile().Definition(line)).understood) << line;
}

TEST(LatticeHeader, ForgetsTheHeaderBefore)
{
    UboHeaderParser parser;
    ASSERT_TRUE(parser.Parse(LatticeFile()
                                 .Size(4, 3, 2)
                                 .Block("Parameters {\nTitle \"gold\"\n}")
                                 .TypeLine("Lattice { float Data } @1(HxZip,5)")
                                 .Header()));
    ASSERT_TRUE(parser.isCompressed);
    ASSERT_NE(parser.dataOffset, 0U);
    ASSERT_TRUE(parser.parameters.contains("Title"));

    EXPECT_FALSE(parser.Parse(""));
    EXPECT_TRUE(parser.parameters.empty());
    EXPECT_EQ(parser.sampleType, PixelType::Unknown);
    EXPECT_FALSE(parser.isCompressed);
    EXPECT_EQ(parser.dataOffset, 0U);
    EXPECT_EQ(parser.dimensionX, 0U);
    EXPECT_EQ(parser.dimensionY, 0U);
    EXPECT_EQ(parser.dimensionZ, 0U);

    // An unclosed block, or a block that was closed, is of no consequence for the next header either.
    EXPECT_FALSE(parser.Parse("Parameters {\n"));
    EXPECT_TRUE(parser.Parse(LatticeFile().Header()));
    EXPECT_TRUE(parser.Parse(LatticeFile().Block("Parameters {\nTitle \"gold\"\n}").Header()));
    EXPECT_TRUE(parser.parameters.contains("Title"));
}

} // namespace
