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
using testing::IsEmpty;

namespace {

const std::filesystem::path folder = TestFolder("npy");

TEST(NpyWriterFiles, OpenWithTheFactsAndPicturesThatTheirWriterKnows)
{
    std::set<std::wstring> pixelTypes;
    for (const WrittenFile& file : ReadManifest(folder))
    {
        if (!file.opens)
            continue;
        SCOPED_TRACE(file.name);
        const Bytes bytes = FileBytes(folder / file.name);
        FileFacts facts = file.facts;
        facts.fileType = FileType::Npy;
        const FileOpen header{bytes, 0};
        ASSERT_TRUE(header.succeeded);
        EXPECT_THAT(header.lines, IsEmpty());
        EXPECT_THAT(*header.image.Reader(), HasFacts(facts));

        for (const uint32_t frameIndex : std::set{0U, facts.frameCount / 2, facts.frameCount - 1})
        {
            const FileOpen open{bytes, 1, frameIndex};
            ASSERT_TRUE(open.succeeded) << frameIndex;
            const RawImageBase& reader = *open.image.Reader();
            EXPECT_THAT(reader, HasFacts(facts));
            const DisplayedFrame expected = ReferenceDisplay(WrittenFrame(folder, file, reader, frameIndex));
            EXPECT_EQ(reader.displayPixels, expected.pixels) << frameIndex;
            EXPECT_EQ(open.lines, expected.lines) << frameIndex;
        }

        const FileOpen beyond{bytes, 0, facts.frameCount};
        EXPECT_FALSE(beyond.succeeded);
        EXPECT_THAT(beyond.lines, ElementsAre("[Lumora] NPY: Frame index is out of range"));
        pixelTypes.insert(PixelTypeName(facts.pixelType));
    }
    EXPECT_THAT(pixelTypes, ElementsAre(L"Complex128", L"Complex64", L"Double64", L"Float32", L"Int16",
                                        L"Int32", L"Int8", L"RGB24", L"UInt16", L"UInt32", L"UInt8"));
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
            const FileOpen open{FileBytes(folder / file.name), mode};
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
