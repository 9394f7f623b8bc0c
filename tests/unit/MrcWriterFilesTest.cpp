#include "support/FileBytes.h"
#include "support/FileRead.h"
#include "support/ReferenceDisplay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iomanip>
#include <set>
#include <sstream>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// What the writer knows of a file, from its line in the manifest.
struct WrittenFile
{
    std::string name;
    bool opens = false;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t frameCount = 0;
    std::string pixelType;
    uint32_t byteOrder = 0;
    std::string formatDetails;
    std::string software;
};

const std::string folder = LUMORA_MRC_FILES "/";

std::vector<WrittenFile> Manifest()
{
    std::ifstream manifest{folder + "manifest"};
    std::vector<WrittenFile> files;
    for (std::string line; std::getline(manifest, line);)
    {
        std::istringstream words{line};
        WrittenFile file;
        std::string outcome;
        words >> file.name >> outcome;
        file.opens = outcome == "opens";
        if (file.opens)
        {
            words >> file.width >> file.height >> file.frameCount >> file.pixelType >> file.byteOrder >>
                std::quoted(file.formatDetails) >> std::quoted(file.software);
        }
        EXPECT_TRUE(words && (file.opens || outcome == "refused")) << line;
        files.push_back(file);
    }
    return files;
}

std::wstring Wide(const std::string& ascii)
{
    return {ascii.begin(), ascii.end()};
}

void ExpectFacts(const WrittenFile& file, const RawImageBase& reader)
{
    EXPECT_EQ(reader.width, file.width);
    EXPECT_EQ(reader.height, file.height);
    EXPECT_EQ(reader.frameCount, file.frameCount);
    EXPECT_EQ(PixelTypeName(reader.pixelType), Wide(file.pixelType));
    EXPECT_EQ(static_cast<uint32_t>(reader.byteOrder), file.byteOrder);
    EXPECT_EQ(reader.formatDetails, Wide(file.formatDetails));
    EXPECT_EQ(reader.software, Wide(file.software));
    EXPECT_EQ(reader.flipVertical, file.byteOrder == 1);
    EXPECT_EQ(reader.fileType,
              file.formatDetails.starts_with("MRC2014 ") ? FileType::Mrc2014 : FileType::Mrc);
}

/// The frame's samples as the writer had them, with what the display depends on.
StoredFrame WrittenFrame(const WrittenFile& file, const RawImageBase& reader, uint32_t frameIndex)
{
    const std::vector<uint8_t> samples = FileBytes(folder + file.name + ".raw");
    EXPECT_EQ(samples.size() % file.frameCount, 0U);
    const size_t frameBytes = samples.size() / file.frameCount;
    const auto first = samples.begin() + static_cast<ptrdiff_t>(frameIndex * frameBytes);
    return {.pixelType = reader.pixelType,
            .width = file.width,
            .height = file.height,
            .bytes = {first, first + static_cast<ptrdiff_t>(frameBytes)},
            .byteOrder = reader.byteOrder,
            .flipVertical = reader.flipVertical,
            .fileType = reader.fileType};
}

TEST(MrcWriterFiles, OpenWithTheFactsAndPicturesThatTheirWriterKnows)
{
    std::set<std::string> pixelTypes;
    for (const WrittenFile& file : Manifest())
    {
        if (!file.opens)
            continue;
        SCOPED_TRACE(file.name);
        const std::vector<uint8_t> bytes = FileBytes(folder + file.name);
        const FileOpen header{bytes, 0};
        ASSERT_TRUE(header.succeeded);
        EXPECT_THAT(header.lines, IsEmpty());
        ExpectFacts(file, *header.image.Reader());

        for (const uint32_t frameIndex : std::set{0U, file.frameCount / 2, file.frameCount - 1})
        {
            const FileOpen open{bytes, 1, frameIndex};
            ASSERT_TRUE(open.succeeded) << frameIndex;
            ExpectFacts(file, *open.image.Reader());
            const DisplayedFrame expected =
                ReferenceDisplay(WrittenFrame(file, *open.image.Reader(), frameIndex));
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
    for (const WrittenFile& file : Manifest())
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
