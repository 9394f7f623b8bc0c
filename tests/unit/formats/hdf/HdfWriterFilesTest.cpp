#include "support/ComApartment.h"
#include "support/FileBytes.h"
#include "support/FileFacts.h"
#include "support/TestFolders.h"
#include "support/WriterManifest.h"
#include "support/display/ReferenceDisplay.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iomanip>
#include <set>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;

namespace {

const std::filesystem::path folder = TestFolder("hdf");
const std::string thumbnailMessage = "Using embedded jpeg thumbnail";

std::string Line(const std::string& message)
{
    return "[Lumora] HDF: " + message;
}

/// The texts in quotes up to the end of a line of the manifest, as diagnostic lines.
Lines RestAsLines(WrittenFile& file)
{
    Lines lines;
    for (std::string message; file.rest >> std::quoted(message);)
        lines.push_back(Line(message));
    EXPECT_TRUE(file.rest.eof()) << file.name;
    return lines;
}

/// Bytes as wide characters, those beyond 127 as negative numbers of 16 bits.
std::wstring Wide(const std::string& bytes)
{
    std::wstring text;
    for (const char byte : bytes)
        text += static_cast<wchar_t>(static_cast<uint16_t>(static_cast<int8_t>(byte)));
    return text;
}

/// What the manifest has of one frame of a file that opens.
struct HdfFrame
{
    explicit HdfFrame(WrittenFile& writtenFile) : file(writtenFile), facts(file.facts)
    {
        std::string formatDetails;
        std::string software;
        uint32_t found = 0;
        file.rest >> index >> offset >> std::quoted(message) >> std::quoted(formatDetails) >>
            std::quoted(software) >> found;
        EXPECT_TRUE(file.rest) << file.name;
        facts.fileType = FileType::Hdf;
        facts.software = Wide(software);
        facts.formatDetails = Wide(formatDetails);
        walkLines = RestAsLines(file);
        lines = walkLines;
        if (found != 0 && index == 0)
            lines.push_back(Line("Reduced images to 250 (found: " + std::to_string(found) + ")"));
    }

    WrittenFile& file;
    FileFacts facts;
    uint32_t index = 0;
    ptrdiff_t offset = 0;
    /// What is said when the frame's picture is asked for; empty when it is made of the frame's samples.
    std::string message;
    /// What is said of the file whichever frame is asked for, and for this one.
    Lines walkLines;
    Lines lines;
};

/// The picture, made of the samples in NAME.raw; of a thumbnail no more than its size.
void ExpectPicture(HdfFrame frame, const Bytes& bytes)
{
    const FileOpen open{bytes, 1, frame.index};
    if (!frame.message.empty())
    {
        frame.lines.push_back(Line(frame.message));
        EXPECT_EQ(open.lines, frame.lines);
        ASSERT_EQ(open.succeeded, frame.message == thumbnailMessage);
        if (!open.succeeded)
            return;
        EXPECT_THAT(*open.image.Reader(), HasFacts(frame.facts));
        EXPECT_EQ(open.image.Reader()->displayPixels.size(),
                  size_t{3} * frame.facts.width * frame.facts.height);
        return;
    }
    ASSERT_TRUE(open.succeeded);
    const RawImageBase& reader = *open.image.Reader();
    EXPECT_THAT(reader, HasFacts(frame.facts));
    const Bytes samples = FileBytes(folder / (frame.file.name + ".raw"));
    const DisplayedFrame expected =
        ReferenceDisplay(WrittenFrame(frame.file, reader, {samples.begin() + frame.offset, samples.end()}));
    EXPECT_TRUE(expected.shown);
    EXPECT_EQ(reader.displayPixels, expected.pixels);
    frame.lines.insert(frame.lines.end(), expected.lines.begin(), expected.lines.end());
    EXPECT_EQ(open.lines, frame.lines);
}

TEST(HdfWriterFiles, OpenWithTheFactsAndPicturesThatTheirWriterKnows)
{
    const ComApartment apartment;
    std::set<std::wstring> shownTypes;
    std::set<std::string> messages;
    for (WrittenFile& file : ReadManifest(folder))
    {
        if (!file.opens)
            continue;
        const HdfFrame frame{file};
        SCOPED_TRACE(file.name + ", frame " + std::to_string(frame.index));
        const Bytes bytes = FileBytes(folder / file.name);
        const FileOpen header{bytes, 0, frame.index};
        EXPECT_EQ(header.lines, frame.lines);
        ASSERT_TRUE(header.succeeded);
        EXPECT_THAT(*header.image.Reader(), HasFacts(frame.facts));
        ExpectPicture(frame, bytes);
        if (frame.message.empty())
            shownTypes.insert(PixelTypeName(frame.facts.pixelType));
        else
            messages.insert(frame.message);

        if (frame.index != 0)
            continue;
        const FileOpen beyond{bytes, 0, file.facts.frameCount};
        EXPECT_FALSE(beyond.succeeded);
        Lines lines = frame.walkLines;
        lines.push_back(Line("Frame index is out of range"));
        EXPECT_EQ(beyond.lines, lines);
    }
    EXPECT_THAT(shownTypes, ElementsAre(L"Float32", L"Int16", L"Int32", L"RGB24", L"UInt16", L"UInt32"));
    EXPECT_THAT(messages,
                ElementsAre("Could not read the first frame of the series", "Could not read the image data",
                            "Unsupported pixel type", "Using embedded jpeg thumbnail"));
}

TEST(HdfWriterFiles, AreRefusedForTheReasonsThatTheirWriterKnows)
{
    const ComApartment apartment;
    std::set<std::string> seen;
    for (WrittenFile& file : ReadManifest(folder))
    {
        if (file.opens)
            continue;
        std::string message;
        EXPECT_TRUE(file.rest >> std::quoted(message)) << file.name;
        Lines lines = RestAsLines(file);
        lines.push_back(Line(message));
        for (const uint32_t mode : {0U, 1U})
        {
            const FileOpen open{FileBytes(folder / file.name), mode};
            EXPECT_FALSE(open.succeeded) << file.name;
            EXPECT_EQ(open.lines, lines) << file.name;
        }
        seen.insert(lines.begin(), lines.end());
    }
    EXPECT_THAT(seen, ElementsAre("[Lumora] HDF: Could not open file",
                                  "[Lumora] HDF: Could not read jpeg image", "[Lumora] HDF: No images found",
                                  "[Lumora] HDF: Skipped image series with invalid data size",
                                  "[Lumora] HDF: Skipped image with color palette",
                                  "[Lumora] HDF: Skipped image with not supported scan-line interlacing",
                                  "[Lumora] HDF: Skipped image with unknown interlace format",
                                  "[Lumora] HDF: Skipped not supported image series"));
}

} // namespace
