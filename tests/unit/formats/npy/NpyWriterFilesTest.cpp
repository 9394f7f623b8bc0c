#include "support/FileBytes.h"
#include "support/WriterManifest.h"
#include "support/display/ReferenceDisplay.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iomanip>
#include <set>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string folder = LUMORA_NPY_FILES "/";

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

TEST(NpyWriterFiles, OpenWithTheFactsAndPicturesThatTheirWriterKnows)
{
    std::set<std::string> pixelTypes;
    for (const WrittenFile& file : ReadManifest(folder))
    {
        if (!file.opens)
            continue;
        SCOPED_TRACE(file.name);
        const Bytes bytes = FileBytes(folder + file.name);
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
            const DisplayedFrame expected = ReferenceDisplay(WrittenFrame(folder, file, reader, frameIndex));
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
    for (WrittenFile& file : ReadManifest(folder))
    {
        if (file.opens)
            continue;
        // Why it is refused; empty where nothing is said.
        std::string message;
        EXPECT_TRUE(file.rest >> std::quoted(message)) << file.name;
        for (const uint32_t mode : {0U, 1U})
        {
            const FileOpen open{FileBytes(folder + file.name), mode};
            EXPECT_FALSE(open.succeeded) << file.name;
            EXPECT_EQ(open.lines, message.empty() ? Lines{} : Lines{"[Lumora] NPY: " + message}) << file.name;
        }
        messages.insert(message);
    }
    EXPECT_THAT(messages,
                ElementsAre("", "Invalid resolution", "The number of frames is too large",
                            "Unsupported data structure", "Unsupported pixel type", "Unsupported version"));
}

} // namespace
