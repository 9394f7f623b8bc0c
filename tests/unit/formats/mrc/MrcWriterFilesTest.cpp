#include "support/FileBytes.h"
#include "support/WriterManifest.h"
#include "support/display/ReferenceDisplay.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iomanip>
#include <set>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string folder = LUMORA_MRC_FILES "/";

std::wstring Wide(const std::string& ascii)
{
    return {ascii.begin(), ascii.end()};
}

/// The facts that the manifest has of a file in this format alone.
struct MrcFacts
{
    explicit MrcFacts(WrittenFile& file)
    {
        file.rest >> byteOrder >> std::quoted(formatDetails) >> std::quoted(software);
        EXPECT_TRUE(file.rest) << file.name;
    }

    uint32_t byteOrder = 0;
    std::string formatDetails;
    std::string software;
};

void ExpectFacts(const WrittenFile& file, const MrcFacts& facts, const RawImageBase& reader)
{
    EXPECT_EQ(reader.width, file.width);
    EXPECT_EQ(reader.height, file.height);
    EXPECT_EQ(reader.frameCount, file.frameCount);
    EXPECT_EQ(PixelTypeName(reader.pixelType), Wide(file.pixelType));
    EXPECT_EQ(static_cast<uint32_t>(reader.byteOrder), facts.byteOrder);
    EXPECT_EQ(reader.formatDetails, Wide(facts.formatDetails));
    EXPECT_EQ(reader.software, Wide(facts.software));
    EXPECT_EQ(reader.flipVertical, facts.byteOrder == 1);
    EXPECT_EQ(reader.fileType,
              facts.formatDetails.starts_with("MRC2014 ") ? FileType::Mrc2014 : FileType::Mrc);
}

TEST(MrcWriterFiles, OpenWithTheFactsAndPicturesThatTheirWriterKnows)
{
    std::set<std::string> pixelTypes;
    for (WrittenFile& file : ReadManifest(folder))
    {
        if (!file.opens)
            continue;
        SCOPED_TRACE(file.name);
        const MrcFacts facts{file};
        const Bytes bytes = FileBytes(folder + file.name);
        const FileOpen header{bytes, 0};
        ASSERT_TRUE(header.succeeded);
        EXPECT_THAT(header.lines, IsEmpty());
        ExpectFacts(file, facts, *header.image.Reader());

        for (const uint32_t frameIndex : std::set{0U, file.frameCount / 2, file.frameCount - 1})
        {
            const FileOpen open{bytes, 1, frameIndex};
            ASSERT_TRUE(open.succeeded) << frameIndex;
            ExpectFacts(file, facts, *open.image.Reader());
            const DisplayedFrame expected =
                ReferenceDisplay(WrittenFrame(folder, file, *open.image.Reader(), frameIndex));
            EXPECT_EQ(open.image.Reader()->displayPixels, expected.pixels) << frameIndex;
            EXPECT_EQ(open.lines, expected.lines) << frameIndex;
        }

        const FileOpen beyond{bytes, 0, file.frameCount};
        EXPECT_FALSE(beyond.succeeded);
        EXPECT_THAT(beyond.lines, ElementsAre("[Lumora] MRC: Frame index is out of range"));
        pixelTypes.insert(file.pixelType);
    }
    EXPECT_THAT(pixelTypes, ElementsAre("Float16", "Float32", "Int16", "Int8", "UInt16"));
}

TEST(MrcWriterFiles, OfComplexSamplesAreRefused)
{
    size_t refused = 0;
    for (const WrittenFile& file : ReadManifest(folder))
    {
        if (file.opens)
            continue;
        const FileOpen open{FileBytes(folder + file.name)};
        EXPECT_FALSE(open.succeeded) << file.name;
        EXPECT_THAT(open.lines, ElementsAre("[Lumora] Could not identify the file format")) << file.name;
        ++refused;
    }
    EXPECT_EQ(refused, 2U);
}

} // namespace
