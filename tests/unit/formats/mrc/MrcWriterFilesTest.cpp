#include "support/FileBytes.h"
#include "support/FileFacts.h"
#include "support/TestFolders.h"
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

const std::filesystem::path folder = TestFolder("mrc");

/// All facts of a file, of which the manifest has the rest in this format's own words.
FileFacts FactsOfMrc(WrittenFile& file)
{
    uint32_t byteOrder = 0;
    std::string formatDetails;
    std::string software;
    file.rest >> byteOrder >> std::quoted(formatDetails) >> std::quoted(software);
    EXPECT_TRUE(file.rest) << file.name;
    FileFacts facts = file.facts;
    facts.fileType = formatDetails.starts_with("MRC2014 ") ? FileType::Mrc2014 : FileType::Mrc;
    facts.byteOrder = static_cast<ByteOrder>(byteOrder);
    facts.flipVertical = facts.byteOrder == ByteOrder::BigEndian;
    facts.software.assign(software.begin(), software.end());
    facts.formatDetails.assign(formatDetails.begin(), formatDetails.end());
    return facts;
}

TEST(MrcWriterFiles, OpenWithTheFactsAndPicturesThatTheirWriterKnows)
{
    std::set<std::wstring> pixelTypes;
    for (WrittenFile& file : ReadManifest(folder))
    {
        if (!file.opens)
            continue;
        SCOPED_TRACE(file.name);
        const FileFacts facts = FactsOfMrc(file);
        const Bytes bytes = FileBytes(folder / file.name);
        const FileOpen header{bytes, 0};
        ASSERT_TRUE(header.succeeded);
        EXPECT_THAT(header.lines, IsEmpty());
        EXPECT_THAT(*header.image.Reader(), HasFacts(facts));

        for (const uint32_t frameIndex : std::set{0U, facts.frameCount / 2, facts.frameCount - 1})
        {
            const FileOpen open{bytes, 1, frameIndex};
            ASSERT_TRUE(open.succeeded) << frameIndex;
            EXPECT_THAT(*open.image.Reader(), HasFacts(facts));
            const DisplayedFrame expected =
                ReferenceDisplay(WrittenFrame(folder, file, *open.image.Reader(), frameIndex));
            EXPECT_EQ(open.image.Reader()->displayPixels, expected.pixels) << frameIndex;
            EXPECT_EQ(open.lines, expected.lines) << frameIndex;
        }

        const FileOpen beyond{bytes, 0, facts.frameCount};
        EXPECT_FALSE(beyond.succeeded);
        EXPECT_THAT(beyond.lines, ElementsAre("[Lumora] MRC: Frame index is out of range"));
        pixelTypes.insert(PixelTypeName(facts.pixelType));
    }
    EXPECT_THAT(pixelTypes, ElementsAre(L"Float16", L"Float32", L"Int16", L"Int8", L"UInt16"));
}

TEST(MrcWriterFiles, OfComplexSamplesAreRefused)
{
    size_t refused = 0;
    for (const WrittenFile& file : ReadManifest(folder))
    {
        if (file.opens)
            continue;
        const FileOpen open{FileBytes(folder / file.name)};
        EXPECT_FALSE(open.succeeded) << file.name;
        EXPECT_THAT(open.lines, ElementsAre("[Lumora] Could not identify the file format")) << file.name;
        ++refused;
    }
    EXPECT_EQ(refused, 2U);
}

} // namespace
