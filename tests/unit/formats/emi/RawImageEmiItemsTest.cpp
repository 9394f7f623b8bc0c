#include "formats/RawImageEmi.h"
#include "support/FileFacts.h"
#include "support/files/EmiFile.h"
#include "support/streams/ReaderExpectations.h"
#include "support/streams/SparseRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using EmiRead = FileRead<RawImageEmi>;

namespace {

const std::string noImages = "[Lumora] EMI: No images found";

/// Expects that the walk gets past an item to the image behind it.
void ExpectStepOver(const EmiFile& start, const char* what, uint32_t number)
{
    const EmiRead read{EmiFile{start}.Bytes(9, 1, nine).Build()};
    EXPECT_TRUE(read.succeeded) << what << " " << number;
    EXPECT_EQ(read.reader.frameCount, 1U) << what << " " << number;
    EXPECT_EQ(read.reader.displayPixels, nine) << what << " " << number;
    EXPECT_EQ(read.reader.software, L"Pellox") << what << " " << number;
    EXPECT_THAT(read.lines, IsEmpty()) << what << " " << number;
}

TEST(EmiReader, StepsOverTypesWithoutAnIdentifier)
{
    ExpectStepOver(EmiFile().Blank(), "one", 0);
    ExpectStepOver(EmiFile().Blank().Blank().Blank(), "three", 0);
}

TEST(EmiReader, StepsOverItemsOfFixedSize)
{
    struct Row
    {
        uint16_t type;
        size_t contentBytes;
    };
    constexpr Row rows[] = {{16, 1}, {32, 1}, {112, 1}, {48, 2}, {50, 2},
                            {49, 4}, {51, 4}, {64, 4},  {65, 8}, {52, 8}};
    for (const Row& row : rows)
    {
        ExpectStepOver(EmiFile().Fixed(row.type, row.contentBytes), "type", row.type);

        // Cut by the end of the file, whatever its contents would have been.
        for (size_t missing = 1; missing <= row.contentBytes; ++missing)
        {
            const EmiRead read{
                EmiFile().Bytes(9, 1, nine).Fixed(row.type, row.contentBytes - missing).Build()};
            EXPECT_TRUE(read.succeeded) << row.type;
            EXPECT_EQ(read.reader.formatDetails, L"") << row.type;
            EXPECT_THAT(read.lines, IsEmpty()) << row.type;
        }
    }
}

TEST(EmiReader, StepsOverTypesThatItDoesNotKnowAsIfTheyWereEmpty)
{
    constexpr uint16_t types[] = {1,      2,      15,     17,     31,     33,     47,     53,
                                  63,     66,     80,     95,     97,     111,    113,    128,
                                  255,    0x0100, 0x0200, 0x0400, 0x0800, 0x1000, 0x1FFF, 0x1206,
                                  0x4000, 0x5FFF, 0x8000, 0x9FFF, 0xC000, 0xDFFF};
    for (const uint16_t type : types)
        ExpectStepOver(EmiFile().Item(type, 1810), "type", type);
}

TEST(EmiReader, StepsOverItemsThatTellTheirLength)
{
    constexpr uint16_t types[] = {96,     0x2000, 0x2001, 0x2002, 0x2100, 0x21FE, 0x21FF, 0x2201, 0x2203,
                                  0x2205, 0x2207, 0x2209, 0x220B, 0x220D, 0x220F, 0x2211, 0x2213, 0x2215,
                                  0x2216, 0x2217, 0x2218, 0x2300, 0x3202, 0x3FFF, 0x6000, 0x6202, 0x7FFF,
                                  0xA000, 0xA202, 0xBFFF, 0xE000, 0xE202, 0xFFFF};
    for (const uint16_t type : types)
        for (const size_t length : {size_t{0}, size_t{1}, size_t{5}, size_t{70000}})
            ExpectStepOver(EmiFile().Sized(type, 1, Bytes(length, 0xEE)), "type", type);
}

TEST(EmiReader, StepsOverAVersionTextOfTheWrongLength)
{
    ExpectStepOver(EmiFile().VersionText(""), "no bytes", 0);
    ExpectStepOver(EmiFile().VersionText(std::string(33, '4')), "33 bytes", 0);
    ExpectStepOver(EmiFile().VersionText(std::string(70000, '4')), "70000 bytes", 0);
}

TEST(EmiReader, StepsOverArraysWithoutPixels)
{
    constexpr uint16_t types[] = {0x2200, 0x2202, 0x2204, 0x2206, 0x2208, 0x220A,
                                  0x220C, 0x220E, 0x2210, 0x2212, 0x2214};
    for (const uint16_t type : types)
    {
        ExpectStepOver(EmiFile().Array(type, 0, 5, Bytes(10, 0xEE)), "no width", type);
        ExpectStepOver(EmiFile().Array(type, 5, 0, Bytes(10, 0xEE)), "no height", type);
        ExpectStepOver(EmiFile().Array(type, 0, 0, Bytes()), "nothing", type);
        // Less than a byte for a sample.
        ExpectStepOver(EmiFile().Array(type, 100, 100, Bytes(10, 0xEE)), "no samples", type);
        ExpectStepOver(EmiFile().Array(type, 65535, 65535, Bytes()), "no samples at all", type);
        // More than eight.
        ExpectStepOver(EmiFile().Array(type, 4, 4, Bytes(144, 0xEE)), "nine bytes a sample", type);
        ExpectStepOver(EmiFile().Array(type, 1, 1, Bytes(70000, 0xEE)), "plenty of bytes", type);
    }
}

TEST(EmiReader, KeepsImagesInTheOrderOfTheFile)
{
    EmiFile file;
    for (uint8_t i = 0; i < 5; ++i)
        file.Fixed(65, 8).Bytes(3, 3, Bytes{0, i, 0, 0, 0, 0, 0, 0, 255}).Blank();
    for (uint8_t i = 0; i < 5; ++i)
    {
        const EmiRead read{file.Build(), 1, i};
        EXPECT_TRUE(read.succeeded);
        EXPECT_EQ(read.reader.frameCount, 5U);
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 0, 255, 0, 0, 0, 0, i, 0));
    }
}

TEST(EmiReader, IgnoresTheUnusedWords)
{
    const Bytes plain = EmiFile().Bytes(9, 1, nine).Build();
    Bytes noisy = plain;
    // In the header; the identifier; behind the width; behind the height.
    for (const size_t place : {4U, 5U, 6U, 7U, 10U, 11U, 18U, 19U, 22U, 23U})
        noisy.at(place) = static_cast<uint8_t>(~noisy.at(place));
    const EmiRead read{noisy};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.width, 9U);
    EXPECT_EQ(read.reader.height, 1U);
    EXPECT_EQ(read.reader.displayPixels, nine);
}

struct LengthRow
{
    const char* what;
    /// What the item claims for its contents.
    uint32_t length;
};

constexpr LengthRow lengthsBeyondTheEnd[] = {
    {"one byte more than there is", 21}, {"twice as much", 40},
    {"half of all numbers", 0x80000000}, {"back to the length's own word", 0xFFFFFFFC},
    {"back to the item", 0xFFFFFFF8},    {"all numbers", 0xFFFFFFFF},
};

TEST(EmiReader, StopsAtALengthThatPointsBeyondTheEnd)
{
    constexpr uint16_t types[] = {96, 0x2000, 0x2216, 0xFFFF};
    for (const uint16_t type : types)
        for (const LengthRow& row : lengthsBeyondTheEnd)
        {
            // Twenty bytes that would hold a marker and its eight bytes.
            const Bytes contents = {52, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 52, 0, 1, 0, 0, 0, 0, 0};
            const EmiRead kept{EmiFile().Bytes(9, 1, nine).Sized(type, 1810, contents, row.length).Build()};
            EXPECT_TRUE(kept.succeeded) << row.what;
            EXPECT_EQ(kept.reader.frameCount, 1U) << row.what;
            EXPECT_EQ(kept.reader.software, L"Pellox") << row.what;
            EXPECT_EQ(kept.reader.formatDetails, L"") << row.what;
            EXPECT_THAT(kept.lines, IsEmpty()) << row.what;

            const EmiRead none{EmiFile().Sized(type, 1810, contents, row.length).Build()};
            EXPECT_FALSE(none.succeeded) << row.what;
            EXPECT_THAT(none.lines, ElementsAre(noImages)) << row.what;
        }
}

TEST(EmiReader, TakesAVersionTextThatIsCutForNone)
{
    for (const uint32_t length : {4U, 32U})
    {
        const EmiRead read{EmiFile().Bytes(9, 1, nine).Sized(96, 1810, Bytes{'4', '.', '3'}, length).Build()};
        EXPECT_TRUE(read.succeeded);
        EXPECT_EQ(read.reader.software, L"Pellox");
    }
}

TEST(EmiReader, KeepsAnImageWhoseSamplesAreCut)
{
    const Bytes file = EmiFile().Bytes(9, 1, nine).Bytes(3, 4, Bytes(11)).Build();
    // The builder's length counts eleven samples of twelve, which makes it one byte a sample all the same.
    const Bytes claimed = EmiFile().Bytes(9, 1, nine).Array(0x2202, 3, 4, Bytes(11), 20).Build();
    for (const Bytes& each : {file, claimed})
    {
        ExpectFactsWithoutFrame<RawImageEmi>(
            each, 1, cannotReadImage, HasFacts({FileType::Emi, PixelType::UInt8, 3, 4, 2, true, L"Pellox"}));
        EXPECT_EQ(EmiRead(each, 1, 0).reader.displayPixels, nine);
    }

    // The largest length and size that there are.
    const Bytes largest = EmiFile().Array(0x2202, 65535, 65535, Bytes(100), 0xFFFFFFFF).Build();
    ExpectFactsWithoutFrame<RawImageEmi>(
        largest, 0, cannotReadImage,
        HasFacts({FileType::Emi, PixelType::UInt8, 65535, 65535, 1, true, L"Pellox"}));
}

TEST(EmiReader, StopsBehindAnArrayThatIsShorterThanItsOwnSize)
{
    struct Row
    {
        uint32_t length;
        uint16_t width;
        uint16_t type;
        uint32_t frameCount;
        Lines lines;
    };
    // The image behind each is never reached.
    const Row rows[] = {
        {0, 1, 0x2202, 0, {noImages}},
        {1, 1, 0x2202, 1, {}},
        {7, 7, 0x2202, 1, {}},
        {6, 3, 0x2204, 1, {}},
        {4, 5, 0x2202, 0, {noImages}},
        {4, 0, 0x2202, 0, {noImages}},
        {7, 2, 0x2202, 0, {"[Lumora] EMI: Unsupported pixel type", noImages}},
    };
    for (const Row& row : rows)
    {
        const auto file =
            EmiFile().Array(row.type, row.width, 1, Bytes(16), row.length).Bytes(9, 1, nine).Build();
        const EmiRead read{file, 0};
        EXPECT_EQ(read.succeeded, row.frameCount == 1) << row.length;
        EXPECT_EQ(read.reader.frameCount, row.frameCount) << row.length;
        EXPECT_EQ(read.lines, row.lines) << row.length;
    }
}

TEST(EmiReader, WalksAMillionItemsWithoutContents)
{
    constexpr size_t count = 1000000;
    Bytes blanks = EmiFile().Build();
    blanks.insert(blanks.end(), 2 * count, 0);
    Bytes empty = EmiFile().Build();
    const Bytes emptyItem = {0x00, 0x20, 1, 0, 0, 0, 0, 0};
    for (size_t i = 0; i < count; ++i)
        empty.insert(empty.end(), emptyItem.begin(), emptyItem.end());
    for (Bytes* file : {&blanks, &empty})
    {
        const Bytes image = EmiFile().Bytes(9, 1, nine).Build();
        file->insert(file->end(), image.begin() + 8, image.end());
        const uint64_t windows = file->size() / 0x400000 + 1;
        const EmiRead read{*file};
        EXPECT_TRUE(read.succeeded);
        EXPECT_EQ(read.reader.frameCount, 1U);
        EXPECT_EQ(read.reader.displayPixels, nine);
        EXPECT_EQ(read.stream.readCalls, windows + 1);
    }
}

TEST(EmiReader, CountsAHundredThousandImages)
{
    constexpr uint32_t count = 100000;
    EmiFile file;
    for (uint32_t i = 0; i < count; ++i)
        file.Bytes(9, 1, nine);
    const Bytes bytes = file.Build();
    const EmiRead read{bytes, 1, count - 1};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.frameCount, count);
    EXPECT_EQ(read.reader.displayPixels, nine);
    EXPECT_FALSE(EmiRead(bytes, 0, count).succeeded);
}

TEST(EmiReader, StepsOverLengthsThatLeadBeyond4GiB)
{
    // An item of almost 4 GiB, and one whose end is just beyond.
    constexpr uint32_t length = 0xFFFFFFF0;
    constexpr uint64_t place = 8 + 8 + uint64_t{length};
    const Bytes image = EmiFile().Sized(0x2000, 1, Bytes(300)).Bytes(9, 1, nine).Build();
    const Bytes there(image.begin() + 8, image.end());
    const SparseRead<RawImageEmi> read{place + there.size(), EmiFile().Sized(0x2000, 1, {}, length).Build(),
                                       place, there};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.displayPixels, nine);
    EXPECT_THAT(read.lines, IsEmpty());
    EXPECT_EQ(read.stream.readCalls, 3U);
}

} // namespace
