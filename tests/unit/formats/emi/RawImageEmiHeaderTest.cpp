#include "formats/RawImageEmi.h"
#include "support/FileFacts.h"
#include "support/files/EmiFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using EmiRead = FileRead<RawImageEmi>;

namespace {

const std::string wrongStamp = "[Lumora] EMI: Invalid stamp";
const std::string highVersion = "[Lumora] EMI: Too high version number";
const std::string noImages = "[Lumora] EMI: No images found";
const std::wstring newerVersion = L"Requires Pellox 4.15.0.2311 or later";

EmiFile OnePicture()
{
    return EmiFile().Bytes(9, 1, nine);
}

TEST(EmiReader, FillsInTheFactsOfTheImageThatIsAskedFor)
{
    const auto file =
        EmiFile().VersionText("4.3").Bytes(9, 1, nine).Array(0x2206, 4, 5, Bytes(40)).Fixed(52, 8);
    EXPECT_THAT(EmiRead(file.Build(), 0, 0).reader,
                HasFacts({FileType::Emi, PixelType::UInt8, 9, 1, 2, true, L"Pellox 4.3", newerVersion}));
    EXPECT_THAT(EmiRead(file.Build(), 0, 1).reader,
                HasFacts({FileType::Emi, PixelType::UInt16, 4, 5, 2, true, L"Pellox 4.3", newerVersion}));
}

TEST(EmiReader, IsChosenByItsStampAndTheHighByteOfItsVersion)
{
    struct Row
    {
        uint16_t stamp;
        uint16_t version;
        bool succeeds;
        Lines lines;
    };
    const std::string unknown = "[Lumora] Could not identify the file format";
    const Row rows[] = {
        {0x4B4A, 0x0200, true, {}},
        {0x4B4A, 0x0201, false, {highVersion}},
        {0x4B4A, 0x02FF, false, {highVersion}},
        {0x4B4A, 0x01FF, false, {unknown}},
        {0x4B4A, 0x0300, false, {unknown}},
        {0x4A4B, 0x0200, false, {unknown}},
    };
    for (const Row& row : rows)
    {
        Bytes file = EmiFile(row.version, row.stamp).Bytes(9, 1, nine).Build();
        file.resize(64);
        const FileOpen open{file};
        EXPECT_EQ(open.succeeded, row.succeeds) << row.version;
        EXPECT_EQ(open.lines, row.lines) << row.version;
        if (open.succeeded)
        {
            EXPECT_EQ(open.image.Reader()->fileType, FileType::Emi);
        }
    }
}

/// What a reader has found when the file's first four bytes are refused.
void ExpectRefusedHeader(const Bytes& file, const Lines& lines, size_t what = 0)
{
    ExpectRefusal<RawImageEmi>(file, lines, what,
                               HasFacts({.fileType = FileType::Emi, .software = L"Pellox"}));
}

TEST(EmiReader, RefusesEveryOtherStamp)
{
    constexpr uint16_t stamps[] = {0x0000, 0x4A4B, 0x4B4B, 0x4A4A, 0x4B49, 0x004A, 0x4B00, 0xFFFF};
    for (const uint16_t stamp : stamps)
    {
        SCOPED_TRACE(stamp);
        ExpectRefusedHeader(EmiFile(0x0200, stamp).Bytes(9, 1, nine).Build(), {wrongStamp});
        // The stamp comes first.
        ExpectRefusedHeader(EmiFile(0xFFFF, stamp).Build(), {wrongStamp});
    }
}

TEST(EmiReader, RefusesVersionsAbove0200)
{
    constexpr uint16_t versions[] = {0x0201, 0x0202, 0x0210, 0x02FF, 0x0300, 0x1000, 0x8000, 0xFFFF};
    for (const uint16_t version : versions)
        ExpectRefusedHeader(EmiFile(version).VersionText("4.3").Fixed(52, 8).Bytes(9, 1, nine).Build(),
                            {highVersion}, version);
}

TEST(EmiReader, ReadsEveryVersionUpTo0200)
{
    constexpr uint16_t versions[] = {0x0000, 0x0001, 0x0010, 0x00FF, 0x0100, 0x01FF, 0x0200};
    for (const uint16_t version : versions)
    {
        const EmiRead read{EmiFile(version).Bytes(9, 1, nine).Build()};
        EXPECT_TRUE(read.succeeded) << version;
        EXPECT_EQ(read.reader.frameCount, 1U) << version;
        EXPECT_EQ(read.reader.displayPixels, nine) << version;
        EXPECT_THAT(read.lines, IsEmpty()) << version;
    }
}

TEST(EmiReader, TellsAFaultAsSoonAsItsFieldIsComplete)
{
    const Bytes stamped = EmiFile(0x0201, 0x4B4B).Build();
    const Bytes tooNew = EmiFile(0x0201).Build();
    for (ptrdiff_t length = 0; length <= 8; ++length)
    {
        SCOPED_TRACE(length);
        ExpectRefusedHeader({stamped.begin(), stamped.begin() + length},
                            length < 2 ? Lines{} : Lines{wrongStamp});
        ExpectRefusedHeader({tooNew.begin(), tooNew.begin() + length},
                            length < 4 ? Lines{} : Lines{highVersion});
    }
}

struct VersionRow
{
    const char* what;
    std::string text;
    std::wstring software;
};

TEST(EmiReader, NamesTheVersionOfTheWriter)
{
    using namespace std::string_literals;
    const VersionRow rows[] = {
        {"nine bytes", "4.3.0.123", L"Pellox 4.3.0.123"},
        {"one byte", "4", L"Pellox 4"},
        {"31 bytes", "0123456789012345678901234567890", L"Pellox 0123456789012345678901234567890"},
        {"32 bytes", "01234567890123456789012345678901", L"Pellox 01234567890123456789012345678901"},
        {"33 bytes", "012345678901234567890123456789012", L"Pellox"},
        {"no bytes", "", L"Pellox"},
        {"a blank", " ", L"Pellox  "},
        {"a NUL at the end", "4.3\0"s, L"Pellox 4.3\0"s},
        {"a NUL inside", "4\0003"s, L"Pellox 4\0003"s},
        {"NULs alone", "\0\0"s, L"Pellox \0\0"s},
        // Bytes are signed: 128 and more become codes near the end of the first plane.
        {"signed characters", "\x7F\x80\xE9\xFF", L"Pellox \x7F\xFF80\xFFE9\xFFFF"},
    };
    for (const VersionRow& row : rows)
    {
        const EmiRead before{EmiFile().VersionText(row.text).Bytes(9, 1, nine).Build()};
        const EmiRead after{OnePicture().VersionText(row.text).Build()};
        for (const EmiRead* read : {&before, &after})
        {
            EXPECT_TRUE(read->succeeded) << row.what;
            EXPECT_EQ(read->reader.software, row.software) << row.what;
            EXPECT_EQ(read->reader.displayPixels, nine) << row.what;
            EXPECT_THAT(read->lines, IsEmpty()) << row.what;
        }
    }
}

TEST(EmiReader, TakesOnlyItsOwnItemForTheVersion)
{
    const Bytes text = {'4', '.', '3'};
    constexpr uint16_t otherIdentifiers[] = {0, 1, 1809, 1811, 0x1207, 1810 + 0x1000, 0xFFFF};
    for (const uint16_t identifier : otherIdentifiers)
    {
        const EmiRead read{EmiFile().Text(identifier, "4.3").Bytes(9, 1, nine).Build(), 0};
        EXPECT_TRUE(read.succeeded) << identifier;
        EXPECT_EQ(read.reader.software, L"Pellox") << identifier;
    }
    constexpr uint16_t otherTypes[] = {0x2000, 0x2060, 0x2201, 0x2216};
    for (const uint16_t type : otherTypes)
    {
        const EmiRead read{EmiFile().Sized(type, 1810, text).Bytes(9, 1, nine).Build(), 0};
        EXPECT_TRUE(read.succeeded) << type;
        EXPECT_EQ(read.reader.software, L"Pellox") << type;
    }
}

TEST(EmiReader, AppendsEveryVersionItem)
{
    const auto file =
        EmiFile().VersionText("4.3").Bytes(9, 1, nine).VersionText("").VersionText("5").VersionText("6.0");
    EXPECT_EQ(EmiRead(file.Build(), 0).reader.software, L"Pellox 4.3 5 6.0");
}

TEST(EmiReader, SaysThatAFileNeedsANewerVersion)
{
    for (const bool behind : {false, true})
    {
        EmiFile file;
        if (!behind)
            file.Fixed(52, 8);
        file.Bytes(9, 1, nine);
        if (behind)
            file.Fixed(52, 8).Fixed(52, 8);
        const EmiRead read{file.Build()};
        EXPECT_TRUE(read.succeeded);
        EXPECT_EQ(read.reader.formatDetails, newerVersion);
        EXPECT_EQ(read.reader.software, L"Pellox");
        EXPECT_EQ(read.reader.displayPixels, nine);
        EXPECT_THAT(read.lines, IsEmpty());
    }
    EXPECT_EQ(EmiRead(OnePicture().Build()).reader.formatDetails, L"");
}

TEST(EmiReader, KeepsWhatItHasFoundOfAFileWithoutImages)
{
    ExpectRefusal<RawImageEmi>(
        EmiFile().VersionText("4.3").Fixed(52, 8).Build(), {noImages}, "",
        HasFacts({.fileType = FileType::Emi, .software = L"Pellox 4.3", .formatDetails = newerVersion}));
    // Without images there is no index that could be wrong.
    EXPECT_THAT(EmiRead(EmiFile().Build(), 0, 5).lines, ElementsAre(noImages));
}

} // namespace
