#include "support/FileBytes.h"
#include "support/FileRead.h"
#include "support/ReferenceDisplay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iomanip>
#include <set>
#include <sstream>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using Lines = std::vector<std::string>;

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
    /// Why it is refused; empty where nothing is said.
    std::string message;
};

const std::string folder = LUMORA_NPY_FILES "/";

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
            words >> file.width >> file.height >> file.frameCount >> file.pixelType;
        else
            words >> std::quoted(file.message);
        EXPECT_TRUE(words && (file.opens || outcome == "refused")) << line;
        files.push_back(file);
    }
    return files;
}

void ExpectFacts(const WrittenFile& file, const RawImageBase& reader)
{
    EXPECT_EQ(reader.fileType, FileType::Npy);
    EXPECT_EQ(reader.width, file.width);
    EXPECT_EQ(reader.height, file.height);
    EXPECT_EQ(reader.frameCount, file.frameCount);
    EXPECT_EQ(PixelTypeName(reader.pixelType), std::wstring(file.pixelType.begin(), file.pixelType.end()));
    EXPECT_EQ(reader.byteOrder, ByteOrder::LittleEndian);
    EXPECT_EQ(reader.formatDetails, L"");
    EXPECT_EQ(reader.software, L"");
    EXPECT_FALSE(reader.flipVertical);
}

/// The frame's samples as they stand in the file, and what the display makes of them.
DisplayedFrame ExpectedFrame(const WrittenFile& file, PixelType pixelType, uint32_t frameIndex)
{
    const std::vector<uint8_t> samples = FileBytes(folder + file.name + ".raw");
    EXPECT_EQ(samples.size() % file.frameCount, 0U);
    const size_t frameBytes = samples.size() / file.frameCount;
    const auto first = samples.begin() + static_cast<ptrdiff_t>(frameIndex * frameBytes);
    return ReferenceDisplay({.pixelType = pixelType,
                             .width = file.width,
                             .height = file.height,
                             .bytes = {first, first + static_cast<ptrdiff_t>(frameBytes)}});
}

TEST(NpyWriterFiles, OpenWithTheFactsAndPicturesThatTheirWriterKnows)
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
            const RawImageBase& reader = *open.image.Reader();
            ExpectFacts(file, reader);
            const DisplayedFrame expected = ExpectedFrame(file, reader.pixelType, frameIndex);
            EXPECT_EQ(reader.displayPixels, expected.pixels) << frameIndex;
            EXPECT_EQ(open.lines, expected.lines) << frameIndex;
        }

        const FileOpen beyond{bytes, 0, file.frameCount};
        EXPECT_FALSE(beyond.succeeded);
        EXPECT_THAT(beyond.lines, ElementsAre("[Lumora] NPY: Frame index is out of range"));
        pixelTypes.insert(file.pixelType);
    }
    EXPECT_THAT(pixelTypes, ElementsAre("Complex128", "Complex64", "Double64", "Float32", "Int16", "Int32",
                                        "Int8", "RGB24", "UInt16", "UInt32", "UInt8"));
}

TEST(NpyWriterFiles, AreRefusedForTheReasonsThatTheirWriterKnows)
{
    std::set<std::string> messages;
    for (const WrittenFile& file : Manifest())
    {
        if (file.opens)
            continue;
        for (const uint32_t mode : {0U, 1U})
        {
            const FileOpen open{FileBytes(folder + file.name), mode};
            EXPECT_FALSE(open.succeeded) << file.name;
            EXPECT_EQ(open.lines, file.message.empty() ? Lines{} : Lines{"[Lumora] NPY: " + file.message})
                << file.name;
        }
        messages.insert(file.message);
    }
    EXPECT_THAT(messages,
                ElementsAre("", "Invalid resolution", "The number of frames is too large",
                            "Unsupported data structure", "Unsupported pixel type", "Unsupported version"));
}

} // namespace
