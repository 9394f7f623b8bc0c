#pragma once

#include "support/DmReaderTest.h"
#include "support/streams/ReaderExpectations.h"

#include "core/PixelType.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

/// Tags of the kinds that matter to the search for images, all in one group.
struct TagList
{
    explicit TagList(const DmLayout& fileLayout) : tags(fileLayout), layout(fileLayout) {}

    TagList& Data(uint8_t number)
    {
        tags.Array("Data", DmType::uint16, 10000, NumberedSamples(number));
        return *this;
    }

    TagList& DataType(uint32_t code)
    {
        tags.UInt32("DataType", code);
        return *this;
    }

    template <typename... Numbers>
    TagList& Dimensions(Numbers... numbers)
    {
        DmTags dimensions{layout};
        (dimensions.UInt32("", static_cast<uint32_t>(numbers)), ...);
        return Group("Dimensions", dimensions);
    }

    TagList& Group(const char* label, const DmTags& members)
    {
        tags.Group(label, members);
        return *this;
    }

    TagList& Unsigned(const char* label, uint32_t number)
    {
        tags.UInt32(label, number);
        return *this;
    }

    TagList& Signed(const char* label, uint8_t number)
    {
        tags.Value(label, DmType::int32, {number, 0, 0, 0});
        return *this;
    }

    TagList& Text(const char* label)
    {
        tags.String(label, u"text");
        return *this;
    }

    [[nodiscard]] DmTags NewGroup() const { return DmTags{layout}; }

    DmTags tags;

private:
    DmLayout layout;
};

/// A frame of 3 x 1 or 1 x 3 samples of 16 bits that the search finds.
struct FoundFrame
{
    Tav::Imaging::RawImage::PixelType pixelType;
    uint32_t width;
    uint32_t height;
    /// The middle sample.
    uint32_t number;
};

/// Tags, and all the frames that they lead to.
struct SearchRow
{
    const char* what;
    void (*write)(TagList& list);
    std::vector<FoundFrame> frames;
};

/// Expects that a file of the row's tags has the row's frames and no more.
template <typename Reader>
void ExpectFound(const DmLayout& layout, const SearchRow& row)
{
    SCOPED_TRACE(row.what);
    TagList list{layout};
    row.write(list);
    const Bytes file = DmFile{layout}.Root(list.tags).Build();
    const auto frameCount = static_cast<uint32_t>(row.frames.size());
    for (uint32_t i = 0; i < frameCount; ++i)
    {
        const FileRead<Reader> read{file, 1, i};
        EXPECT_TRUE(read.succeeded);
        const FoundFrame& frame = row.frames[i];
        EXPECT_THAT(read.reader,
                    HasFacts(DmFacts<Reader>(frame.pixelType, frame.width, frame.height, frameCount)));
        EXPECT_THAT(read.reader.displayPixels, testing::ElementsAre(0, frame.number, 255));
    }
    const std::string version = layout.version == 4 ? "DM4" : "DM3";
    ExpectRefusal<Reader>(file, {"[Lumora] " + version + ": No images found"}, "", testing::_, frameCount);
}
