#include "formats/RawImageSer.h"
#include "support/FileFacts.h"
#include "support/files/SerFile.h"
#include "support/streams/ReaderExpectations.h"
#include "support/streams/SparseRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using SerRead = FileRead<RawImageSer>;

namespace {

const std::string outOfRange = "[Lumora] SER: Frame index is out of range";
const std::string wrongType = "[Lumora] SER: Unsupported pixel type";

/// Pictures of 3 x 1 bytes with the element's number in the middle.
SerFile Numbered(uint16_t version, uint8_t count)
{
    SerFile file = SerFile().Version(version);
    for (uint8_t i = 0; i < count; ++i)
        file.Element(3, 1, {0, i, 255});
    return file;
}

constexpr uint16_t versions[] = {0x0210, 0x0211, 0x0220};

TEST(SerReader, RefusesAnElementThatIsInTheFileButNotValid)
{
    for (const uint16_t version : versions)
    {
        const SerRead read{Numbered(version, 4).ValidCount(3).Build(), 0, 3};
        EXPECT_FALSE(read.succeeded);
        EXPECT_THAT(read.lines, ElementsAre(outOfRange));
    }
}

TEST(SerReader, FindsElementsInAnyOrderAndAnyNumberOfTimes)
{
    const SerFile file = Numbered(0x0220, 3);
    const uint64_t first = file.FirstElement();
    const uint64_t second = first + SerElement::headerBytes + 3;
    const Bytes shuffled = SerFile{file}.ElementOffset(0, second).ElementOffset(1, first).Build();
    const Bytes repeated = SerFile{file}.ElementOffset(2, second).Build();

    EXPECT_THAT(SerRead(shuffled, 1, 0).reader.displayPixels, ElementsAre(0, 1, 255));
    EXPECT_THAT(SerRead(shuffled, 1, 1).reader.displayPixels, ElementsAre(0, 0, 255));
    EXPECT_THAT(SerRead(repeated, 1, 2).reader.displayPixels, ElementsAre(0, 1, 255));
}

TEST(SerReader, ChecksEveryOffsetWhicheverFrameIsAskedFor)
{
    for (const uint16_t version : versions)
    {
        const uint64_t size = Numbered(version, 3).Build().size();
        for (const size_t damaged : {0U, 1U, 2U})
            for (const uint64_t offset : {size, size + 1, uint64_t{0x7FFFFFFF}, uint64_t{0xFFFFFFFF}})
                for (const uint32_t frameIndex : {0U, 1U, 2U, 3U})
                    ExpectRefusal<RawImageSer>(
                        Numbered(version, 3).ElementOffset(damaged, offset).Build(), {},
                        testing::Message() << version << " " << damaged << " " << frameIndex, testing::_,
                        frameIndex);

        // The last byte is no place for an element, but only the one that is read there suffers.
        const Bytes atLastByte = Numbered(version, 3).ElementOffset(1, size - 1).Build();
        EXPECT_TRUE(SerRead(atLastByte, 1, 0).succeeded);
        EXPECT_TRUE(SerRead(atLastByte, 1, 2).succeeded);
        const SerRead read{atLastByte, 0, 1};
        EXPECT_FALSE(read.succeeded);
        EXPECT_THAT(read.lines, IsEmpty());
    }
}

TEST(SerReader, ReadsAllEightBytesOfALongOffset)
{
    for (const uint16_t version : {uint16_t{0x0211}, uint16_t{0x0220}})
        for (const uint64_t high : {uint64_t{1}, uint64_t{0x80000000}, uint64_t{0xFFFFFFFF}})
        {
            const SerFile file = Numbered(version, 2);
            const SerRead read{SerFile{file}.ElementOffset(1, high << 32 | file.FirstElement()).Build(), 0};
            EXPECT_FALSE(read.succeeded) << version;
            EXPECT_THAT(read.lines, IsEmpty()) << version;
        }
}

TEST(SerReader, ReadsOnlyTheLowHalfOfTheArraysPlace)
{
    for (const uint64_t high : {uint64_t{1}, uint64_t{0xFFFFFFFF}})
    {
        const SerFile file = Numbered(0x0220, 3);
        const SerRead read{SerFile{file}.ArrayOffset(high << 32 | file.HeaderBytes()).Build(), 1, 2};
        EXPECT_TRUE(read.succeeded);
        EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 2, 255));
        EXPECT_THAT(read.lines, IsEmpty());
    }
}

TEST(SerReader, NeedsTheWholeArrayInTheStream)
{
    for (const uint16_t version : versions)
    {
        // The array is moved behind the elements, up to the end of the file.
        const SerFile file = Numbered(version, 2);
        Bytes moved = file.Build();
        const uint64_t arrayPlace = moved.size();
        const auto array = moved.begin() + static_cast<ptrdiff_t>(file.HeaderBytes());
        const Bytes copy(array, array + static_cast<ptrdiff_t>(2 * file.OffsetBytes()));
        moved = SerFile{file}.ArrayOffset(arrayPlace).ElementOffset(0, 0).ElementOffset(1, 0).Build();
        moved.insert(moved.end(), copy.begin(), copy.end());

        const SerRead whole{moved, 1, 1};
        EXPECT_TRUE(whole.succeeded) << version;
        EXPECT_THAT(whole.reader.displayPixels, ElementsAre(0, 1, 255)) << version;

        while (moved.size() > arrayPlace - 2)
        {
            moved.pop_back();
            for (const uint32_t frameIndex : {0U, 1U, 2U})
            {
                const SerRead cut{moved, 0, frameIndex};
                EXPECT_FALSE(cut.succeeded) << version << " " << moved.size();
                EXPECT_THAT(cut.lines, IsEmpty()) << version << " " << moved.size();
            }
        }
    }
}

TEST(SerReader, SpendsNothingOnACountThatTheFileCannotHold)
{
    for (const uint16_t version : versions)
        for (const uint32_t count :
             {20U, 0x10000U, 0x20000000U, 0x20000001U, 0x40000000U, 0x40000001U, 0x80000000U, 0xFFFFFFFFU})
        {
            // A hundred bytes, with no offset in them that could be refused for itself.
            Bytes file = SerFile().Version(version).TotalCount(count).ValidCount(count).Build();
            file.resize(100);
            const SerRead read{file, 1, count - 1};
            EXPECT_FALSE(read.succeeded) << count;
            EXPECT_THAT(read.lines, IsEmpty()) << count;
            EXPECT_EQ(read.stream.readCalls, 1U) << count;
            EXPECT_EQ(read.stream.bytesRead, 100U) << count;
        }
}

struct PlaceRow
{
    const char* what;
    uint64_t place;
    Lines lines;
};

TEST(SerReader, SurvivesAnArrayAnywhere)
{
    // One element of 2 x 1 bytes: 26 bytes of header, 4 of array, 50 of element header, 2 of samples.
    const SerFile file = SerFile().Element(2, 1, {31, 0});
    ASSERT_EQ(file.Build().size(), 82U);
    const PlaceRow rows[] = {
        {"on the header's first word", 0, {}},
        // The entry is the word itself, 22: an element in the header, whose type falls into calibration.
        {"on the word that tells it", 22, {wrongType}},
        {"in calibration", 40, {}},
        {"on the last byte", 81, {}},
        {"at the end", 82, {}},
        {"beyond the end", 83, {}},
        {"far beyond the end", 0x80000000, {}},
        {"at the end of numbers", 0xFFFFFFFF, {}},
        {"where it would wrap", 0xFFFFFFFE, {}},
    };
    for (const PlaceRow& row : rows)
        ExpectRefusal<RawImageSer>(SerFile{file}.ArrayOffset(row.place).Build(), row.lines, row.what);
}

TEST(SerReader, SurvivesAnElementAnywhere)
{
    const SerFile file = SerFile().Element(2, 1, {7, 9});
    const PlaceRow rows[] = {
        {"at the header", 0, {wrongType}},
        {"at the word of its array", 22, {wrongType}},
        {"at its own entry", 26, {wrongType}},
        {"at the last place but one that leaves room for its header", 31, {wrongType}},
        {"without the height's last byte", 33, {}},
        {"without a height", 36, {}},
        {"without the width's last byte", 37, {}},
        {"without a width", 40, {}},
        {"with half a type", 41, {}},
        {"without a type", 42, {}},
        {"without all of calibration", 43, {}},
        {"at the last byte", 81, {}},
        {"at the end", 82, {}},
        {"beyond the end", 83, {}},
    };
    for (const PlaceRow& row : rows)
        ExpectRefusal<RawImageSer>(SerFile{file}.ElementOffset(0, row.place).Build(), row.lines, row.what);
}

TEST(SerReader, RefusesEveryOtherDataType)
{
    constexpr uint16_t types[] = {0, 11, 12, 15, 32, 255, 256, 257, 0x0200, 0x8001, 0xFFFF};
    for (const uint16_t type : types)
        ExpectRefusal<RawImageSer>(SerFile().Element({type, 2, 3, Bytes(200)}).Build(), {wrongType}, type,
                                   HasFacts({FileType::Ser, PixelType::Unknown, 2, 3, 1, true, L"Pellox"}));
}

TEST(SerReader, SaysNothingOfADataTypeBeforeTheElementsHeaderIsComplete)
{
    for (const uint16_t type : {uint16_t{1}, uint16_t{11}})
    {
        const Bytes whole = SerFile().Element({type, 2, 1, {7, 9}}).Build();
        for (size_t length = 30; length <= 80; ++length)
        {
            const SerRead read{Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)), 0};
            EXPECT_EQ(read.succeeded, type == 1 && length == 80) << length;
            EXPECT_EQ(read.lines, type == 11 && length == 80 ? Lines{wrongType} : Lines{}) << length;
        }
    }
}

TEST(SerReader, KeepsWhatItHasReadOfAnElementThatIsCut)
{
    struct Row
    {
        size_t length;
        PixelType pixelType;
        uint32_t width;
    };
    // The element begins at 30, its data type at 70, its width at 72 and its height at 76.
    constexpr Row rows[] = {{71, PixelType::Unknown, 0},
                            {72, PixelType::UInt16, 0},
                            {75, PixelType::UInt16, 0},
                            {76, PixelType::UInt16, 7},
                            {79, PixelType::UInt16, 7}};
    const Bytes whole = SerFile().Element({2, 7, 1, Bytes(14)}).Build();
    for (const Row& row : rows)
    {
        const SerRead read{Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(row.length)), 0};
        EXPECT_FALSE(read.succeeded) << row.length;
        EXPECT_EQ(read.lines, Lines{}) << row.length;
        EXPECT_THAT(read.reader, HasFacts({FileType::Ser, row.pixelType, row.width, 0, 1, true, L"Pellox"}))
            << row.length;
    }
}

TEST(SerReader, LeavesTheSizeToTheDisplay)
{
    struct Row
    {
        uint32_t width;
        uint32_t height;
        std::string line;
    };
    const Row rows[] = {{0, 1, invalidResolution},     {1, 0, invalidResolution},
                        {0, 0, invalidResolution},     {65536, 1, invalidResolution},
                        {1, 65536, invalidResolution}, {0xFFFFFFFF, 0xFFFFFFFF, invalidResolution},
                        {4, 1, cannotReadImage},       {65535, 65535, cannotReadImage},
                        {65535, 1, cannotReadImage}};
    for (const Row& row : rows)
        ExpectFactsWithoutFrame<RawImageSer>(
            SerFile().Element(row.width, row.height, {1, 2, 3}).Build(), 0, row.line,
            HasFacts({FileType::Ser, PixelType::UInt8, row.width, row.height, 1, true, L"Pellox"}));
}

TEST(SerReader, ShowsAnElementBeyond4GiB)
{
    constexpr uint64_t place = 0x140000005;
    const Bytes element = SerElement{1, 3, 1, {0, 77, 255}}.Build();
    const Bytes start = Numbered(0x0220, 1).ElementOffset(0, place).Build();
    const SparseRead<RawImageSer> read{place + element.size(), start, place, element};
    EXPECT_TRUE(read.succeeded);
    EXPECT_THAT(read.reader.displayPixels, ElementsAre(0, 77, 255));
    EXPECT_THAT(read.lines, IsEmpty());
    EXPECT_EQ(read.stream.readCalls, 3U);
}

TEST(SerReader, LooksForAnArrayBeyond4GiBInTheFirst4GiB)
{
    constexpr uint64_t place = 0x100001000;
    const SerFile file = Numbered(0x0220, 1).ArrayOffset(place);
    ByteWriter array;
    array.Put(uint64_t{file.FirstElement()});
    const SparseRead<RawImageSer> read{place + 8, file.Build(), place, array.bytes};
    // Zeros at 0x1000 make an element of the file's start, with calibration where its type would be.
    EXPECT_FALSE(read.succeeded);
    EXPECT_THAT(read.lines, ElementsAre(wrongType));
}

TEST(SerReader, RefusesAnElementWhoseHeaderWouldWrapToTheStart)
{
    // Ten bytes before the end of all numbers; a stream may claim any size.
    constexpr uint64_t place = 0xFFFFFFFFFFFFFFF5;
    const Bytes start = Numbered(0x0220, 1).ElementOffset(0, place).Build();
    const SparseRead<RawImageSer> read{0xFFFFFFFFFFFFFFFF, start, 0, {}};
    EXPECT_FALSE(read.succeeded);
    EXPECT_THAT(read.lines, IsEmpty());
}

} // namespace
