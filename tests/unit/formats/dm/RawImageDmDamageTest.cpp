#include "support/DmReaderTest.h"
#include "support/streams/DamagedFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;

namespace {

/// Where the text stands for the `number`th time, from 0 on, and ends.
size_t PlaceBehind(const Bytes& file, const std::string& text, size_t number)
{
    auto place = file.begin();
    for (size_t i = 0; i <= number; ++i)
        place =
            std::search(place, file.end(), text.begin(), text.end()) + static_cast<ptrdiff_t>(text.size());
    return static_cast<size_t>(place - file.begin());
}

/// Bytes from the end of the label of the dimensions to the end of the `count`th one: the group's flags and
/// number of tags, and for each dimension kind, label length, delimiter, number of type words, type, value.
size_t BytesOfDimensions(const DmLayout& layout, size_t count)
{
    return layout.version == 4 ? 8 + (2 + 8) + count * (1 + 2 + 8 + 4 + 8 + 8 + 4)
                               : (2 + 4) + count * (1 + 2 + 4 + 4 + 4 + 4);
}

/// States the size that the header's check wants for a file that was cut.
void MendRootBytes(Bytes& file, const DmLayout& layout)
{
    const size_t place = layout.version == 4 ? 8 : 4;
    const size_t size = layout.version == 4 ? file.size() - 24 : 1;
    for (size_t i = 0; i < 4 && place + i < file.size(); ++i)
        file[place + i] = static_cast<uint8_t>(size >> (8 * (3 - i)));
}

/// A thumbnail and a stack of two frames, both in arrays of true size, between other tags.
DmFile WholeFile(const DmLayout& layout)
{
    DmImage thumbnail = Thumbnail(9);
    thumbnail.elementType = DmType::byte;
    thumbnail.elementCount = 10000;
    thumbnail.samples.resize(10000);
    DmImage stack = NumberedImage(50);
    stack.depth = 2;
    const DmTags notes = DmTags{layout}
                             .String("Name", u"gold")
                             .Struct("Range", {DmType::int16, DmType::float64}, Bytes(10))
                             .StructArray("Marks", {DmType::byte, DmType::int32}, 2, Bytes(10))
                             .Value("Exposure", DmType::float32, {0, 0, 0x80, 0x3F});
    return DmFile{layout}.Root(DmTags{layout}
                                   .Group("Notes", notes)
                                   .Group("ImageList", DmTags{layout}.Image(thumbnail).Image(stack)));
}

struct LengthRow
{
    /// First length of the file to which the row applies.
    size_t begin;
    uint32_t frameCount;
    PixelType pixelType;
    Lines lines;
};

TYPED_TEST(DmReader, FindsTheImagesThatAreDescribedBeforeTheFileIsCut)
{
    const Bytes whole = WholeFile(this->layout).Build();
    const size_t headerBytes = this->layout.version == 4 ? 24 : 12;
    const size_t thumbnailDimensions = PlaceBehind(whole, "Dimensions", 0);
    const size_t stackDimensions = PlaceBehind(whole, "Dimensions", 1);
    const Lines ignored = {"[Lumora] DM: The embedded thumbnail will be ignored"};
    const LengthRow rows[] = {
        {headerBytes, 0, PixelType::Unknown, {this->Line("No images found")}},
        {thumbnailDimensions + BytesOfDimensions(this->layout, 2), 1, PixelType::RGBA32, {}},
        {stackDimensions + BytesOfDimensions(this->layout, 2), 1, PixelType::UInt16, ignored},
        {stackDimensions + BytesOfDimensions(this->layout, 3), 2, PixelType::UInt16, ignored},
    };
    const auto expected = [&](size_t length) {
        return std::prev(std::ranges::upper_bound(rows, length, {}, &LengthRow::begin));
    };
    for (size_t length = headerBytes; length <= whole.size(); ++length)
    {
        Bytes file = FirstBytes(whole, length);
        MendRootBytes(file, this->layout);
        const LengthRow& row = *expected(length);

        const FileRead<TypeParam> header{file, 0};
        ASSERT_EQ(header.succeeded, row.frameCount > 0) << length;
        ASSERT_EQ(header.lines, row.lines) << length;
        ASSERT_EQ(header.reader.frameCount, row.frameCount) << length;
        ASSERT_EQ(header.reader.pixelType, row.pixelType) << length;
        const bool hasSecondFrame = FileRead<TypeParam>(file, 0, 1).succeeded;
        ASSERT_EQ(hasSecondFrame, row.frameCount == 2) << length;

        // The samples precede their description. Reading the same picture at every length tells nothing new.
        const bool isAtAnEdge =
            std::any_of(std::begin(rows), std::end(rows), [length](const LengthRow& edge) {
                return length + 2 >= edge.begin && length <= edge.begin + 2;
            });
        if (isAtAnEdge || length + 2 >= whole.size())
        {
            const FileRead<TypeParam> frame{file};
            EXPECT_EQ(frame.succeeded, row.frameCount > 0) << length;
            EXPECT_EQ(frame.lines, row.lines) << length;
            if (row.pixelType == PixelType::RGBA32)
            {
                EXPECT_THAT(frame.reader.displayPixels, ElementsAre(9, 2, 3, 4, 5, 6)) << length;
            }
            if (row.pixelType == PixelType::UInt16)
            {
                EXPECT_THAT(frame.reader.displayPixels, ElementsAre(0, 50, 255)) << length;
            }
        }
    }
}

/// A thumbnail and a stack of two frames in a few hundred bytes, with a tag of every kind. Bytes are shown
/// fastest.
DmFile SmallFile(const DmLayout& layout)
{
    const DmTags notes = DmTags{layout}
                             .String("", u"Au")
                             .Struct("", {DmType::int16, DmType::byte}, Bytes(3))
                             .StructArray("", {DmType::int32}, 2, Bytes(8));
    const DmTags thumbnailSize = DmTags{layout}.UInt32("", 2).UInt32("", 1);
    const DmTags stackSize = DmTags{layout}.UInt32("", 3).UInt32("", 1).UInt32("", 2);
    return DmFile{layout}.Root(DmTags{layout}
                                   .Group("", notes)
                                   .Array("", DmType::int32, 0x40000002, {9, 2, 3, 0, 4, 5, 6, 0})
                                   .UInt32("DataType", 23)
                                   .Group("Dimensions", thumbnailSize)
                                   .Array("", DmType::int16, 0x80000003, {0, 50, 255, 0, 51, 255})
                                   .UInt32("DataType", 6)
                                   .Group("Dimensions", stackSize));
}

TYPED_TEST(DmReader, RefusesAFileThatIsCutByTheSizeOfItsRootGroup)
{
    const Bytes whole = SmallFile(this->layout).ClaimRootBytes(this->layout.version == 4 ? 0 : 5000).Build();
    ASSERT_LT(whole.size(), 1000U);
    const size_t sizeWordEnd = this->layout.version == 4 ? 12 : 8;
    for (size_t length = 0; length < whole.size(); ++length)
    {
        // Version 4 states a root group of no bytes here, which is right for 24 bytes only.
        const bool isSizeRight = this->layout.version == 4 && length == 24;
        const std::string line =
            this->Line(isSizeRight ? "No images found" : "Invalid checksum (number of bytes)");
        ExpectRefusal<TypeParam>(FirstBytes(whole, length), length < sizeWordEnd ? Lines{} : Lines{line},
                                 length);
    }
}

TYPED_TEST(DmReader, OpensOrNotAtEveryLength)
{
    const Bytes whole = SmallFile(this->layout).Build();
    for (size_t length = 0; length <= whole.size(); ++length)
        for (const uint32_t frameIndex : {0U, 1U})
        {
            Bytes file = FirstBytes(whole, length);
            MendRootBytes(file, this->layout);
            ExpectSaneRead<TypeParam>(file, frameIndex, length);
            ExpectSaneOutcome(file, frameIndex, length);
        }
}

TYPED_TEST(DmReader, OpensOrNotWithAnyByteChanged)
{
    const Bytes whole = SmallFile(this->layout).Build();
    EXPECT_THAT(FileRead<TypeParam>(whole, 1, 1).reader.displayPixels, ElementsAre(0, 51, 255));
    ForEveryChangedByte(whole, whole.size(),
                        [](const Bytes& file, size_t place) { ExpectSaneRead<TypeParam>(file, 1, place); });
}

TYPED_TEST(DmReader, OpensOrNotWithAnyWordOfTheStructureAtAnExtreme)
{
    const Bytes whole = SmallFile(this->layout).Build();
    for (size_t place = 0; place + 4 <= whole.size(); ++place)
        for (const uint32_t word : {0U, 1U, 9999U, 10000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
        {
            // In either byte order: structure and values differ in it.
            for (const ByteOrder order : {ByteOrder::BigEndian, ByteOrder::LittleEndian})
            {
                Bytes file = whole;
                const Bytes bytes = std::move(ByteWriter{order}.Put(word).bytes);
                std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<ptrdiff_t>(place));
                ExpectSaneRead<TypeParam>(file, 0, place);
            }
        }
}

} // namespace
