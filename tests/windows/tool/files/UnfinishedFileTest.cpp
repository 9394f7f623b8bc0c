#include "lumora/pictures/UnfinishedFile.h"

#include "lumora/console/Failure.h"
#include "lumora/pictures/PictureWriter.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/support/PngPicture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Lumora;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Bytes = std::vector<uint8_t>;

constexpr std::string_view signature = "KIND";
const Bytes ours = {'K', 'I', 'N', 'D', '1'};
const Bytes written = {'K', 'I', 'N', 'D', '2'};

class UnfinishedFileTest : public testing::Test
{
protected:
    /// Writes a file, and keeps it or not. Returns what goes wrong.
    [[nodiscard]] std::optional<std::wstring> WriteAnew(const char* name, bool isKept) const
    {
        return FailureOf([&] {
            UnfinishedFile file((folder.Path() / name).wstring(), signature);
            folder.Write(file.path, written);
            if (isKept)
                file.Keep();
        });
    }

    const TemporaryFolder folder;
};

TEST_F(UnfinishedFileTest, ReplacesAFileOfItsKindOrAnEmptyOne)
{
    folder.Write("kind", ours);
    folder.Write("empty", Bytes());
    for (const char* const name : {"kind", "empty", "new", "deep\\er\\new"})
    {
        EXPECT_EQ(WriteAnew(name, true), std::nullopt) << name;
        EXPECT_EQ(folder.Read(name), written) << name;
    }
    EXPECT_THAT(folder.Files(), ElementsAre("deep/er/new", "empty", "kind", "new"));
}

TEST_F(UnfinishedFileTest, ReplacesNothingElse)
{
    const Bytes others[] = {{'K'}, {'K', 'I', 'N'}, {'K', 'I', 'N', 'E', '1'}, {' ', 'K', 'I', 'N', 'D'}};
    for (const Bytes& other : others)
    {
        folder.Write("other", other);
        EXPECT_EQ(WriteAnew("other", true),
                  L"there is a file of another kind of the name other; -o names another place");
        EXPECT_EQ(folder.Read("other"), other);
        EXPECT_THAT(folder.Files(), ElementsAre("other"));
    }
    std::filesystem::create_directory(folder.Path() / "folder");
    EXPECT_EQ(WriteAnew("folder", true), L"there is a folder of the name folder; -o names another place");
}

TEST_F(UnfinishedFileTest, LeavesNothingIfItIsNotKept)
{
    folder.Write("kind", ours);
    EXPECT_EQ(WriteAnew("kind", false), std::nullopt);
    EXPECT_EQ(folder.Read("kind"), ours);
    EXPECT_EQ(WriteAnew("new", false), std::nullopt);
    EXPECT_THAT(folder.Files(), ElementsAre("kind"));
}

TEST_F(UnfinishedFileTest, TakesOverWhatWasLeftBehind)
{
    folder.Write("kind", ours);
    const std::wstring path = (folder.Path() / "kind").wstring();
    EXPECT_FALSE(UnfinishedFile::WasLeftBehind(path));
    folder.Write("kind.lumora-part", Bytes(100));
    EXPECT_TRUE(UnfinishedFile::WasLeftBehind(path));
    EXPECT_EQ(WriteAnew("kind", true), std::nullopt);
    EXPECT_FALSE(UnfinishedFile::WasLeftBehind(path));
    EXPECT_EQ(folder.Read("kind"), written);
    EXPECT_THAT(folder.Files(), ElementsAre("kind"));
}

/// A writer of gray pictures of two pixels.
std::unique_ptr<PictureWriter> Writer(Imaging& imaging, const std::filesystem::path& path)
{
    return std::make_unique<PictureWriter>(imaging, path.wstring(), PictureFormat(), Box{2, 1}, 1);
}

TEST_F(UnfinishedFileTest, IsWrittenByOneAtATime)
{
    Imaging imaging;
    const std::filesystem::path path = folder.Path() / "a.png";
    const auto first = Writer(imaging, path);
    EXPECT_EQ(FailureOf([&] { Writer(imaging, path); }),
              L"cannot write the picture: another program holds the file (ERROR_SHARING_VIOLATION)");
    Bytes pixels = {10, 200};
    first->WriteRows(1, 2, pixels);
    first->Finish();
    EXPECT_THAT(folder.Files(), ElementsAre("a.png"));
    EXPECT_THAT(PngPicture(path).pixels, ElementsAre(10, 10, 10, 200, 200, 200));
}

} // namespace
