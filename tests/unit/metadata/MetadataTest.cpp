#include "metadata/Metadata.h"

#include "support/files/DmImages.h"
#include "support/files/MrcFile.h"
#include "support/streams/FileRead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <type_traits>

using namespace Tav::Imaging::RawImage;

namespace {

static_assert(std::has_virtual_destructor_v<Metadata>);
static_assert(noexcept(std::declval<const Metadata&>().Get({}, std::declval<PROPVARIANT&>())));

constexpr MetadataProperty allProperties[] = {
    MetadataProperty::Width,      MetadataProperty::Height,        MetadataProperty::Dimensions,
    MetadataProperty::FrameCount, MetadataProperty::BitDepth,      MetadataProperty::PixelFormat,
    MetadataProperty::Software,   MetadataProperty::FormatDetails,
};
static_assert(std::size(allProperties) == metadataPropertyCount);

/// A variant as a careless caller might leave it, and whether it has come back empty.
struct Variant
{
    Variant() { std::memset(&value, 0xA5, sizeof(value)); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { PropVariantClear(&value); }

    [[nodiscard]] bool IsEmpty() const
    {
        uint8_t bytes[sizeof(value)];
        std::memcpy(bytes, &value, sizeof(value));
        return std::all_of(std::begin(bytes), std::end(bytes), [](uint8_t byte) { return byte == 0; });
    }

    PROPVARIANT value;
};

std::optional<uint32_t> Number(const Metadata& metadata, MetadataProperty property)
{
    Variant variant;
    if (!metadata.Get(property, variant.value))
    {
        EXPECT_TRUE(variant.IsEmpty());
        return std::nullopt;
    }
    EXPECT_EQ(variant.value.vt, VT_UI4);
    return variant.value.ulVal;
}

std::optional<std::wstring> Text(const Metadata& metadata, MetadataProperty property)
{
    Variant variant;
    if (!metadata.Get(property, variant.value))
    {
        EXPECT_TRUE(variant.IsEmpty());
        return std::nullopt;
    }
    EXPECT_EQ(variant.value.vt, VT_LPWSTR);
    return variant.value.pwszVal;
}

bool HasValue(const Metadata& metadata, MetadataProperty property)
{
    Variant variant;
    const bool has = metadata.Get(property, variant.value);
    EXPECT_EQ(variant.IsEmpty(), !has);
    return has;
}

/// An opened image whose facts a test chooses afterwards, and the metadata filled from it.
class MetadataOfImage : public testing::Test
{
protected:
    RawImageBase& Facts() { return *open.image.Reader(); }

    Metadata Filled()
    {
        Metadata metadata;
        metadata.FillFromImage(open.image);
        return metadata;
    }

    FileOpen open{MrcFile().Samples({0}).Build(), 0};
};

TEST(Metadata, NumbersItsPropertiesFromZero)
{
    int number = 0;
    for (const MetadataProperty property : allProperties)
        EXPECT_EQ(static_cast<int>(property), number++);
}

TEST(Metadata, HasNoValuesBeforeItIsFilled)
{
    const Metadata metadata;
    for (const MetadataProperty property : allProperties)
        EXPECT_FALSE(HasValue(metadata, property)) << static_cast<int>(property);
}

TEST(Metadata, HasOnlyAnEmptySoftwareNameFromAHolderWithoutAReader)
{
    Metadata metadata;
    metadata.FillFromImage(RawImage{});

    for (const MetadataProperty property : allProperties)
        EXPECT_EQ(HasValue(metadata, property), property == MetadataProperty::Software)
            << static_cast<int>(property);
    EXPECT_EQ(Text(metadata, MetadataProperty::Software), L"");
}

TEST(Metadata, DescribesAnOpenedFile)
{
    const FileOpen open{MrcFile()
                            .Order(ByteOrder::BigEndian)
                            .Size(12, 34, 5)
                            .Mode(12)
                            .Version(20141)
                            .Samples(Bytes(size_t{12} * 34 * 5 * 2))
                            .Build(),
                        0};
    Metadata metadata;
    metadata.FillFromImage(open.image);

    EXPECT_EQ(Number(metadata, MetadataProperty::Width), 12U);
    EXPECT_EQ(Number(metadata, MetadataProperty::Height), 34U);
    EXPECT_EQ(Text(metadata, MetadataProperty::Dimensions), L"12 x 34 x 5");
    EXPECT_EQ(Number(metadata, MetadataProperty::FrameCount), 5U);
    EXPECT_EQ(Number(metadata, MetadataProperty::BitDepth), 16U);
    EXPECT_EQ(Text(metadata, MetadataProperty::PixelFormat), L"Float16 (Big endian)");
    EXPECT_EQ(Text(metadata, MetadataProperty::Software), L"Gatan Digital Micrograph");
    EXPECT_EQ(Text(metadata, MetadataProperty::FormatDetails), L"MRC2014 Mode 12");
}

TEST(Metadata, DescribesTheImageBehindAThumbnail)
{
    for (const DmLayout& layout : {DmLayout{3}, DmLayout{4}})
    {
        const DmTags images = DmTags{layout}.Image(Thumbnail(1)).Image(SmallNumberedImage(2));
        const FileOpen open{DmFile{layout}.Root(images).Build(), 0};
        Metadata metadata;
        metadata.FillFromImage(open.image);

        EXPECT_EQ(Number(metadata, MetadataProperty::Width), 3U);
        EXPECT_EQ(Number(metadata, MetadataProperty::Height), 1U);
        EXPECT_EQ(Text(metadata, MetadataProperty::Dimensions), L"3 x 1");
        EXPECT_EQ(Number(metadata, MetadataProperty::FrameCount), 1U);
        EXPECT_EQ(Number(metadata, MetadataProperty::BitDepth), 16U);
        EXPECT_EQ(Text(metadata, MetadataProperty::PixelFormat), L"UInt16");
        EXPECT_EQ(Text(metadata, MetadataProperty::Software), L"Gatan Digital Micrograph");
        EXPECT_EQ(Text(metadata, MetadataProperty::FormatDetails), std::nullopt);
    }
}

// A file can hold two images in colour before the others. The reader sets aside the first only, so the second
// is met where the property handler expects no thumbnail, and makes it open the frame behind it.
TEST(Metadata, DescribesTheFrameThatWasOpenedLast)
{
    for (const DmLayout& layout : {DmLayout{3}, DmLayout{4}})
    {
        const DmTags images =
            DmTags{layout}.Image(Thumbnail(1)).Image(Thumbnail(2)).Image(SmallNumberedImage(3));
        FileOpen open{DmFile{layout}.Root(images).Build(), 0};
        ASSERT_TRUE(open.succeeded);
        EXPECT_EQ(open.image.Reader()->pixelType, PixelType::RGBA32);
        EXPECT_EQ(open.image.Reader()->frameCount, 2U);

        ASSERT_TRUE(open.image.Open(&open.stream, 0, 1));
        Metadata metadata;
        metadata.FillFromImage(open.image);
        EXPECT_EQ(Text(metadata, MetadataProperty::Dimensions), L"3 x 1 x 2");
        EXPECT_EQ(Number(metadata, MetadataProperty::BitDepth), 16U);
        EXPECT_EQ(Text(metadata, MetadataProperty::PixelFormat), L"UInt16");
    }
}

TEST(Metadata, OutlivesTheImage)
{
    auto other = std::make_unique<FileOpen>(MrcFile().Size(3, 2, 1).Samples({0, 0, 0, 0, 0, 0}).Build(), 0);
    Metadata metadata;
    metadata.FillFromImage(other->image);
    other.reset();
    EXPECT_EQ(Text(metadata, MetadataProperty::Dimensions), L"3 x 2");
    EXPECT_EQ(Text(metadata, MetadataProperty::FormatDetails), L"MRC Mode 0");
}

TEST_F(MetadataOfImage, RendersTheDimensionsInPlainDecimals)
{
    struct Row
    {
        uint32_t width;
        uint32_t height;
        uint32_t frameCount;
        const wchar_t* text;
    };
    constexpr Row rows[] = {
        {512, 512, 1, L"512 x 512"},
        {512, 512, 0, L"512 x 512"},
        {512, 512, 2, L"512 x 512 x 2"},
        {512, 512, 40, L"512 x 512 x 40"},
        {0, 0, 0, L"0 x 0"},
        {1, 65535, 1, L"1 x 65535"},
        {1234567, 7654321, 1000000, L"1234567 x 7654321 x 1000000"},
        {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, L"4294967295 x 4294967295 x 4294967295"},
    };
    for (const Row& row : rows)
    {
        Facts().width = row.width;
        Facts().height = row.height;
        Facts().frameCount = row.frameCount;
        const Metadata metadata = Filled();
        EXPECT_EQ(Text(metadata, MetadataProperty::Dimensions), row.text);
        EXPECT_EQ(Number(metadata, MetadataProperty::Width), row.width);
        EXPECT_EQ(Number(metadata, MetadataProperty::Height), row.height);
        EXPECT_EQ(Number(metadata, MetadataProperty::FrameCount), row.frameCount);
    }
}

TEST_F(MetadataOfImage, RendersThePixelTypeAsBitDepthAndFormat)
{
    struct Row
    {
        uint32_t pixelType;
        uint32_t bitDepth;
        const wchar_t* format;
        const wchar_t* bigEndianFormat;
    };
    constexpr Row rows[] = {
        {0, 0, L"<unknown>", L"<unknown> (Big endian)"},
        {1, 4, L"UInt4", L"UInt4 (Big endian)"},
        {2, 8, L"UInt8", L"UInt8 (Big endian)"},
        {3, 16, L"UInt16", L"UInt16 (Big endian)"},
        {4, 32, L"UInt32", L"UInt32 (Big endian)"},
        {5, 8, L"Int8", L"Int8 (Big endian)"},
        {6, 16, L"Int16", L"Int16 (Big endian)"},
        {7, 32, L"Int32", L"Int32 (Big endian)"},
        {8, 16, L"Float16", L"Float16 (Big endian)"},
        {9, 32, L"Float32", L"Float32 (Big endian)"},
        {10, 64, L"Double64", L"Double64 (Big endian)"},
        {11, 64, L"Complex64", L"Complex64 (Big endian)"},
        {12, 128, L"Complex128", L"Complex128 (Big endian)"},
        {13, 24, L"RGB24", L"RGB24 (Big endian)"},
        {14, 32, L"RGBA32", L"RGBA32 (Big endian)"},
        {15, 0, L"<unknown>", L"<unknown> (Big endian)"},
        {0xFFFFFFFF, 0, L"<unknown>", L"<unknown> (Big endian)"},
    };
    for (const Row& row : rows)
    {
        Facts().pixelType = static_cast<PixelType>(row.pixelType);

        // Only the value 1 means big-endian.
        for (const uint32_t order : {0U, 2U, 0x100U, 0xFFFFFFFFU})
        {
            Facts().byteOrder = static_cast<ByteOrder>(order);
            EXPECT_EQ(Number(Filled(), MetadataProperty::BitDepth), row.bitDepth) << row.pixelType;
            EXPECT_EQ(Text(Filled(), MetadataProperty::PixelFormat), row.format) << row.pixelType;
        }
        Facts().byteOrder = ByteOrder::BigEndian;
        EXPECT_EQ(Number(Filled(), MetadataProperty::BitDepth), row.bitDepth) << row.pixelType;
        EXPECT_EQ(Text(Filled(), MetadataProperty::PixelFormat), row.bigEndianFormat) << row.pixelType;
    }
}

TEST_F(MetadataOfImage, GivesAnEmptySoftwareNameButNoEmptyDetails)
{
    Facts().software.clear();
    Facts().formatDetails.clear();
    EXPECT_EQ(Text(Filled(), MetadataProperty::Software), L"");
    EXPECT_EQ(Text(Filled(), MetadataProperty::FormatDetails), std::nullopt);

    Facts().software = L"\xFFE9 Ardix 2.10 ";
    Facts().formatDetails = L"x";
    EXPECT_EQ(Text(Filled(), MetadataProperty::Software), L"\xFFE9 Ardix 2.10 ");
    EXPECT_EQ(Text(Filled(), MetadataProperty::FormatDetails), L"x");

    Facts().software.assign(100000, L'a');
    EXPECT_EQ(Text(Filled(), MetadataProperty::Software), Facts().software);
}

TEST_F(MetadataOfImage, KeepsTextsThatALaterImageDoesNotTell)
{
    Facts().width = 1;
    Facts().pixelType = PixelType::Int16;
    Facts().byteOrder = ByteOrder::BigEndian;
    Facts().software = L"SerialEM";
    Facts().formatDetails = L"MRC Mode 1";
    Metadata metadata = Filled();

    Facts().width = 2;
    Facts().pixelType = PixelType::Unknown;
    Facts().byteOrder = ByteOrder::LittleEndian;
    Facts().software.clear();
    Facts().formatDetails.clear();
    metadata.FillFromImage(open.image);
    EXPECT_EQ(Number(metadata, MetadataProperty::Width), 2U);
    EXPECT_EQ(Number(metadata, MetadataProperty::BitDepth), 0U);
    EXPECT_EQ(Text(metadata, MetadataProperty::PixelFormat), L"<unknown>");
    EXPECT_EQ(Text(metadata, MetadataProperty::Software), L"SerialEM");
    EXPECT_EQ(Text(metadata, MetadataProperty::FormatDetails), L"MRC Mode 1");

    Facts().software = L"Tomography";
    Facts().formatDetails = L"MRC Mode 2";
    metadata.FillFromImage(open.image);
    metadata.FillFromImage(RawImage{});
    EXPECT_EQ(Number(metadata, MetadataProperty::Width), 2U);
    EXPECT_EQ(Text(metadata, MetadataProperty::Software), L"Tomography");
    EXPECT_EQ(Text(metadata, MetadataProperty::FormatDetails), L"MRC Mode 2");
}

TEST_F(MetadataOfImage, HandsOutACopyOfEachText)
{
    Facts().software = L"SerialEM";
    auto metadata = std::make_unique<Metadata>(Filled());
    Variant first;
    Variant second;
    ASSERT_TRUE(metadata->Get(MetadataProperty::Software, first.value));
    ASSERT_TRUE(metadata->Get(MetadataProperty::Software, second.value));
    EXPECT_NE(first.value.pwszVal, second.value.pwszVal);

    first.value.pwszVal[0] = L'A';
    EXPECT_EQ(Text(*metadata, MetadataProperty::Software), L"SerialEM");
    metadata.reset();
    EXPECT_STREQ(second.value.pwszVal, L"SerialEM");
}

TEST_F(MetadataOfImage, HasNoValueForOtherProperties)
{
    const Metadata metadata = Filled();
    for (const int number : {8, 9, 100, -1, 0x7FFFFFFF})
        EXPECT_FALSE(HasValue(metadata, static_cast<MetadataProperty>(number))) << number;
}

} // namespace
