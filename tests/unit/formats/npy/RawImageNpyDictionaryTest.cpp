#include "formats/RawImageNpy.h"
#include "support/FileFacts.h"
#include "support/files/NpyFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

using NpyRead = FileRead<RawImageNpy>;

namespace {

const std::string unsupportedPixelType = "[Lumora] NPY: Unsupported pixel type";
const std::string unsupportedStructure = "[Lumora] NPY: Unsupported data structure";
const std::string invalidResolution = "[Lumora] NPY: Invalid resolution";
const std::string tooManyFrames = "[Lumora] NPY: The number of frames is too large";

NpyRead ReadHeader(const std::string& dictionary)
{
    return NpyRead{NpyFile().Dictionary(dictionary).Samples(Bytes(4096)).Build(), 0};
}

NpyRead ReadShape(const std::string& shape, const std::string& descr = "|u1")
{
    return NpyRead{NpyFile().Descr(descr).Shape(shape).Samples(Bytes(4096)).Build(), 0};
}

TEST(NpyDictionary, IsReadInAnyOrderAndLayout)
{
    const std::string dictionaries[] = {
        "{'descr': '<u2', 'fortran_order': False, 'shape': (4, 3), }",
        "{'descr': '<u2', 'fortran_order': True, 'shape': (4, 3), }",
        "{'shape': (4, 3), 'fortran_order': False, 'descr': '<u2'}",
        "{'shape':(4,3),'descr':'<u2'}",
        "{'descr''<u2''shape'(4,3)}",
        "text {'descr': '<u2', 'shape': (4, 3)} text}",
        "{{'descr': '<u2', 'shape': (4, 3)}}",
        "{\n'descr'\n:\n'<u2',\n'shape'\n:\n(4,\n3)\n}",
        "{'descr': '<u2', 'shape': (  4  ,  3  )}",
        "{'descr': '<u2', 'shape': (4L, 3L)}",
        // Only the first of equal keys counts.
        "{'descr': '<u2', 'descr': '<f8', 'shape': (4, 3), 'shape': (5, 5)}",
        // A value may be anywhere behind its key.
        "{'descr' of what follows is '<u2', 'shape': None, 'other': (4, 3)}",
        "{'shape': [2, 2], (4, 3), 'descr': <f8, '<u2'}",
        // One quote may serve two texts.
        "{'descr': '<u2, 'shape': (4, 3)}",
        // Zero bytes are characters like any other.
        "\0{\0'descr'\0:\0'<u2',\0'shape'\0(4, 3)\0}"s,
        "{'descr': '<\0u2', 'shape': (4, 3)}"s,
    };
    for (const std::string& dictionary : dictionaries)
    {
        const NpyRead read = ReadHeader(dictionary);
        EXPECT_TRUE(read.succeeded) << dictionary;
        EXPECT_THAT(read.reader, HasFacts({FileType::Npy, PixelType::UInt16, 3, 4, 1})) << dictionary;
        EXPECT_THAT(read.lines, IsEmpty()) << dictionary;
    }
}

TEST(NpyDictionary, IsRefusedSilentlyWhenItIsMalformed)
{
    const std::string dictionaries[] = {
        // Braces.
        "",
        "'descr': '<u2', 'shape': (4, 3)",
        "{'descr': '<u2', 'shape': (4, 3)",
        "'descr': '<u2', 'shape': (4, 3)}",
        "{}",
        "}{'descr': '<u2', 'shape': (4, 3)}",
        "{}{'descr': '<u2', 'shape': (4, 3)}",
        "{ }{'descr': '<u2', 'shape': (4, 3)}",
        "}'descr': '<u2', 'shape': (4, 3){",
        "{'descr': '<u2'}, 'shape': (4, 3)}",
        std::string(246, '{'),
        std::string(246, '}'),
        std::string(246, '\0'),
        std::string(245, ' ') + "{",
        std::string(244, ' ') + "{}",
        "{" + std::string(244, ' ') + "}",
        // Keys.
        "{'shape': (4, 3)}",
        "{'descr': '<u2'}",
        "{'Descr': '<u2', 'shape': (4, 3)}",
        "{'descr': '<u2', 'SHAPE': (4, 3)}",
        "{\"descr\": '<u2', 'shape': (4, 3)}",
        "{'descr': '<u2', \"shape\": (4, 3)}",
        "{descr: '<u2', 'shape': (4, 3)}",
        "{'descr : '<u2', 'shape': (4, 3)}",
        "{'descr': '<u2', shape: (4, 3)}",
        "{' descr': '<u2', 'shape': (4, 3)}",
        "{'des\0cr': '<u2', 'shape': (4, 3)}"s,
        // Quotes of the type.
        "{'shape': (4, 3), 'descr': }",
        "{'shape': (4, 3), 'descr': <u2}",
        "{'shape': (4, 3), 'descr': '<u2}",
        "{'shape': (4, 3), 'descr': <u2'}",
        "{'shape': (4, 3), 'descr': \"<u2\"}",
        "{'shape': (4, 3), 'descr'}",
        "{'shape': (4, 3), 'descr''}",
        // Parentheses of the shape.
        "{'descr': '<u2', 'shape': }",
        "{'descr': '<u2', 'shape': 4, 3}",
        "{'descr': '<u2', 'shape': 4, 3)}",
        "{'descr': '<u2', 'shape': (4, 3}",
        "{'descr': '<u2', 'shape': [4, 3]}",
        "{'descr': '<u2', 'shape': )4, 3(}",
        "{'descr': '<u2', (4, 3) 'shape'}",
        "{'descr': '<u2', 'shape'}",
    };
    for (const std::string& dictionary : dictionaries)
        ExpectRefusal<RawImageNpy>(NpyFile().Dictionary(dictionary).Samples(Bytes(4096)).Build(), {},
                                   dictionary, testing::Field(&RawImageBase::fileType, FileType::Npy));
}

TEST(NpyDictionary, TakesWhatTheNextQuotesEncloseForTheType)
{
    // A type without quotes, and the list of a structure's fields, whose names come first.
    for (const char* dictionary :
         {"{'descr': <u2, 'fortran_order': False, 'shape': (4, 3)}",
          "{'descr': [('x', '<u2'), ('y', '<u2')], 'shape': (4, 3)}", "{'descr': '', '<u2', 'shape': (4, 3)}",
          // The shape, though missing, is not looked for any more.
          "{'descr': '<f2'}"})
    {
        const NpyRead read = ReadHeader(dictionary);
        EXPECT_FALSE(read.succeeded) << dictionary;
        EXPECT_THAT(read.lines, ElementsAre(unsupportedPixelType)) << dictionary;
    }

    const NpyRead structure = ReadHeader("{'descr': [('u1', '<f4'), ('y', '<f4')], 'shape': (4, 3)}");
    EXPECT_TRUE(structure.succeeded);
    EXPECT_EQ(structure.reader.pixelType, PixelType::UInt8);
}

TEST(NpyDictionary, TellsTheTypesTroubleBeforeTheShapes)
{
    EXPECT_THAT(ReadShape("(5,)", "<f2").lines, ElementsAre(unsupportedPixelType));
    EXPECT_THAT(ReadShape("(70000, 1)", "<f2").lines, ElementsAre(unsupportedPixelType));
}

TEST(NpyDictionary, EndsWithTheFirst256BytesOfTheFile)
{
    const std::string start = "{'descr': '<u2', 'shape': (4, 3)";
    for (const size_t length : {start.size() + 1, size_t{245}, size_t{246}, size_t{247}, size_t{300}})
    {
        std::string dictionary = start;
        dictionary.resize(length - 1, ' ');
        dictionary += '}';
        for (const uint16_t headerLength : {uint16_t{246}, uint16_t{502}})
        {
            const NpyRead read{
                NpyFile().Dictionary(dictionary).HeaderLength(headerLength).Samples(Bytes(4096)).Build(), 0};
            EXPECT_EQ(read.succeeded, length <= 246) << length;
            EXPECT_THAT(read.lines, IsEmpty()) << length;
        }
    }
}

TEST(NpyDictionary, ReadsOnBehindTheStatedHeaderLength)
{
    for (const uint16_t headerLength : {uint16_t{0}, uint16_t{1}, uint16_t{10}, uint16_t{40}})
    {
        const auto file = NpyFile()
                              .Dictionary("{'descr': '<u2', 'fortran_order': False, 'shape': (4, 3), }")
                              .HeaderLength(headerLength)
                              .Samples(Bytes(300));
        const NpyRead read{file.Build(), 0};
        EXPECT_TRUE(read.succeeded) << headerLength;
        EXPECT_EQ(read.reader.pixelType, PixelType::UInt16) << headerLength;
        EXPECT_EQ(read.reader.width, 3U) << headerLength;
    }
}

struct NumberRow
{
    std::string shape;
    uint32_t width;
    uint32_t height;
};

TEST(NpyDictionary, ReadsNumbersAsFarAsTheyAreNumbers)
{
    const NumberRow rows[] = {
        {"(+4, 3)", 3, 4},      {"(004, 0000000000000000000000000003)", 3, 4},
        {"(4x, 3)", 3, 4},      {"(4.9, 3e5)", 3, 4},
        {"(4-1, 3+2)", 3, 4},   {"(\t4, \r\n\v\f3)", 3, 4},
        {"(4\n, 3)", 3, 4},     {"(4\n9, 3)", 3, 4},
        {"(4\0009, 3)"s, 3, 4}, {"(4LLL, 3L L)", 3, 4},
    };
    for (const NumberRow& row : rows)
    {
        const NpyRead read = ReadShape(row.shape);
        EXPECT_TRUE(read.succeeded) << row.shape;
        EXPECT_EQ(read.reader.width, row.width) << row.shape;
        EXPECT_EQ(read.reader.height, row.height) << row.shape;
    }
}

struct WrongNumberRow
{
    std::string shape;
    std::string line;
};

TEST(NpyDictionary, RefusesNumbersThatAreNoneOrDoNotFit)
{
    const std::string twentyDigits = "99999999999999999999";
    const WrongNumberRow rows[] = {
        {"(x, 4)", invalidResolution},
        {"(4, None)", invalidResolution},
        {"(-4, 4)", invalidResolution},
        {"(4, -4)", invalidResolution},
        {"(--4, 4)", invalidResolution},
        {"(- 4)", unsupportedStructure},
        {"(+-4, 4)", invalidResolution},
        {"(((4, 3)", invalidResolution},
        {"(4, -)", invalidResolution},
        {"(2, -4, 4)", invalidResolution},
        // A negative count is a very large one.
        {"(-1, 4, 4)", tooManyFrames},
        {"(4, 4, -1)", tooManyFrames},
        {"(-1, -1, 5)", invalidResolution},
        // Numbers too large for their type stay large: they do not come round to 3, 4 or 5.
        {"(4294967300, 4)", invalidResolution},
        {"(4, 4294967300)", invalidResolution},
        {"(18446744073709551620, 4)", invalidResolution},
        {"(4294967301, 4, 5)", tooManyFrames},
        {"(18446744073709551621, 4, 5)", tooManyFrames},
        {"(-4294967291, 4, 5)", tooManyFrames},
        {"(5, 4, 4294967299)", invalidResolution},
        {"(" + twentyDigits + ", 4)", invalidResolution},
        {"(4, " + twentyDigits + ")", invalidResolution},
        {"(-" + twentyDigits + ", 4)", invalidResolution},
        {"(" + twentyDigits + ", 4, 4)", tooManyFrames},
        {"(-" + twentyDigits + ", 4, 4)", tooManyFrames},
        {"(4, 4, " + twentyDigits + ")", tooManyFrames},
        {"(" + twentyDigits + ", " + twentyDigits + ", " + twentyDigits + ")", invalidResolution},
        {"(" + std::string(90, '9') + ", 4)", invalidResolution},
    };
    for (const WrongNumberRow& row : rows)
    {
        const NpyRead read = ReadShape(row.shape);
        EXPECT_FALSE(read.succeeded) << row.shape;
        EXPECT_THAT(read.lines, ElementsAre(row.line)) << row.shape;
    }
}

struct SaturationRow
{
    const char* shape;
    uint32_t width;
    uint32_t height;
    uint32_t frameCount;
};

TEST(NpyDictionary, KeepsNumbersWithinTheLimitsOfASigned32BitNumber)
{
    constexpr SaturationRow rows[] = {
        {"(2147483646, 1, 2)", 2, 1, 0x7FFFFFFE},
        {"(2147483647, 1, 2)", 2, 1, 0x7FFFFFFF},
        {"(2147483648, 1, 2)", 2, 1, 0x7FFFFFFF},
        {"(9223372036854775808, 1, 2)", 2, 1, 0x7FFFFFFF},
        {"(99999999999999999999, 1, 2)", 2, 1, 0x7FFFFFFF},
        {"(-1, 1, 2)", 2, 1, 0xFFFFFFFF},
        {"(-2147483647, 1, 2)", 2, 1, 0x80000001},
        {"(-2147483648, 1, 2)", 2, 1, 0x80000000},
        {"(-2147483649, 1, 2)", 2, 1, 0x80000000},
        {"(-99999999999999999999, 1, 2)", 2, 1, 0x80000000},
    };
    for (const SaturationRow& row : rows)
    {
        const NpyRead read = ReadShape(row.shape);
        EXPECT_THAT(read.lines, ElementsAre(tooManyFrames)) << row.shape;
        EXPECT_THAT(read.reader,
                    HasFacts({FileType::Npy, PixelType::UInt8, row.width, row.height, row.frameCount}))
            << row.shape;
    }
    // Different numbers beyond a limit have become the same, so the third one counts the frames.
    EXPECT_EQ(ReadShape("(3000000000, 4000000000, 5)").reader.frameCount, 5U);
}

TEST(NpyDictionary, CountsTokensBeyondTheThirdWithoutUsingThem)
{
    std::string ones = "1";
    for (int tokens = 2; tokens <= 100; ++tokens)
    {
        ones += ",1";
        const NpyRead read = ReadHeader("{'descr':'u1','shape':(" + ones + ")}");
        EXPECT_EQ(read.succeeded, tokens <= 3) << tokens;
        EXPECT_EQ(read.lines, tokens <= 3 ? Lines{} : Lines{unsupportedStructure}) << tokens;
    }
    EXPECT_THAT(ReadShape("(4, 3, 2, x, " + std::string(60, '9') + ")").lines,
                ElementsAre(unsupportedStructure));
}

} // namespace
