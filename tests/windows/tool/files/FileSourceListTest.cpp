#include "lumora/console/Failure.h"
#include "lumora/files/FileSource.h"
#include "windows/clients/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Lumora::FileSource;
using Lumora::NameList;
using Lumora::SourceFile;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

using Bytes = std::vector<uint8_t>;
using Found = std::vector<std::pair<std::wstring, std::wstring>>;

/// A folder that is the current one.
class FileSourceList : public testing::Test
{
protected:
    FileSourceList() { std::filesystem::current_path(folder.Path()); }
    FileSourceList(const FileSourceList&) = delete;
    FileSourceList& operator=(const FileSourceList&) = delete;
    ~FileSourceList() override { std::filesystem::current_path(before); }

    void WriteFile(const char* name) const { folder.Write(name, Bytes(1)); }

    [[nodiscard]] FileSource ListOf(const std::string& names) const
    {
        const std::filesystem::path file = folder.Write("names", Bytes(names.begin(), names.end()));
        return {{}, std::make_unique<NameList>(file.wstring(), NameList::Separator::Line), nullptr};
    }

    /// The files that a list names, and in which folder below the current one each of them belongs.
    [[nodiscard]] Found FilesOf(const std::string& names) const
    {
        Found found;
        const Lumora::FileList list = Lumora::AllFilesOf(ListOf(names));
        for (const SourceFile& file : list.files)
            found.emplace_back(file.name, file.subfolder);
        EXPECT_THAT(list.failures, IsEmpty());
        return found;
    }

    const std::filesystem::path before = std::filesystem::current_path();
    const TemporaryFolder folder;
};

TEST_F(FileSourceList, KeepsTheFoldersOfRelativeNames)
{
    WriteFile("a.mrc");
    WriteFile("sub\\deep\\b.mrc");
    EXPECT_THAT(FilesOf("a.mrc\nsub/deep/b.mrc\nsub\\deep\\b.mrc"),
                ElementsAre(Pair(L"a.mrc", L""), Pair(L"sub/deep/b.mrc", L"sub\\deep"),
                            Pair(L"sub\\deep\\b.mrc", L"sub\\deep")));
    // As "find ." and "dir" in loops of scripts write them.
    EXPECT_THAT(FilesOf("./a.mrc\n.\\sub/./deep//b.mrc"),
                ElementsAre(Pair(L"./a.mrc", L""), Pair(L".\\sub/./deep//b.mrc", L"sub\\deep")));
}

TEST_F(FileSourceList, KeepsNoFolderThatLeadsUpwardsOrFromARoot)
{
    WriteFile("sub\\a.mrc");
    const std::filesystem::path file = folder.Path() / "sub" / "a.mrc";
    const std::string full = file.string();
    const std::string drive = file.root_name().string();
    const std::string fromRoot = full.substr(drive.size());
    const std::string upwards = "../" + folder.Path().filename().string() + "/sub/a.mrc";
    Found expected;
    std::string names;
    for (const std::string& name :
         {full, fromRoot, drive + "sub\\a.mrc", upwards, std::string("sub/../sub/a.mrc")})
    {
        names += name + '\n';
        expected.emplace_back(std::filesystem::path(name).wstring(), L"");
    }
    EXPECT_EQ(FilesOf(names), expected);
}

TEST_F(FileSourceList, TakesAPatternInAListAsAName)
{
    WriteFile("a.mrc");
    const Lumora::FileList list = Lumora::AllFilesOf(ListOf("*.mrc"));
    EXPECT_THAT(list.files, IsEmpty());
    ASSERT_EQ(list.failures.size(), 1U);
    EXPECT_EQ(list.failures[0].name, L"*.mrc");

    const Lumora::FileList named = Lumora::AllFilesOf({{L"*.mrc"}, nullptr, nullptr});
    ASSERT_EQ(named.files.size(), 1U) << "on the command line, it is a pattern";
    EXPECT_EQ(named.files[0].name, L"a.mrc");
}

TEST_F(FileSourceList, KeepsTheNameOfAFolderInAList)
{
    WriteFile("sub\\a.mrc");
    WriteFile("sub\\deep\\b.mrc");
    EXPECT_THAT(FilesOf("sub"),
                ElementsAre(Pair(L"sub\\a.mrc", L"sub"), Pair(L"sub\\deep\\b.mrc", L"sub\\deep")));
    EXPECT_THAT(FilesOf("./sub/deep/"), ElementsAre(Pair(L"./sub/deep/b.mrc", L"sub\\deep")));
    EXPECT_THAT(FilesOf("."),
                ElementsAre(Pair(L".\\sub\\a.mrc", L"sub"), Pair(L".\\sub\\deep\\b.mrc", L"sub\\deep")));

    // The user has named the folder, so its name says nothing new.
    Found found;
    for (const SourceFile& file : Lumora::AllFilesOf({{L"sub"}, nullptr, nullptr}).files)
        found.emplace_back(file.name, file.subfolder);
    EXPECT_THAT(found, ElementsAre(Pair(L"sub\\a.mrc", L""), Pair(L"sub\\deep\\b.mrc", L"deep")));
}

TEST_F(FileSourceList, SaysWhenANameHoldsNulCharacters)
{
    WriteFile("a.mrc");
    const Lumora::FileList list = Lumora::AllFilesOf(ListOf(std::string("a.mrc\0b.mrc\n", 12)));
    EXPECT_THAT(list.files, IsEmpty());
    ASSERT_EQ(list.failures.size(), 1U);
    EXPECT_EQ(list.failures[0].name, L"a.mrc");
    EXPECT_EQ(list.failures[0].failure, L"the name holds a NUL character; -0 is for lists with these");
}

TEST_F(FileSourceList, ComesAfterThePaths)
{
    WriteFile("a.mrc");
    WriteFile("b.mrc");
    const std::filesystem::path names = folder.Write("names", Bytes{'a', '.', 'm', 'r', 'c', '\n', 'c'});
    FileSource source({L"b.mrc"}, std::make_unique<NameList>(names.wstring(), NameList::Separator::Line),
                      nullptr);
    EXPECT_EQ(source.Next()->name, L"b.mrc");
    EXPECT_EQ(source.Next()->name, L"a.mrc");
    const std::optional<SourceFile> missing = source.Next();
    EXPECT_EQ(missing->name, L"c");
    EXPECT_EQ(missing->failure, L"the file was not found (ERROR_FILE_NOT_FOUND)");
    EXPECT_FALSE(source.Next());
    EXPECT_FALSE(source.Next()) << "the end is the end";
}

TEST_F(FileSourceList, LooksIntoAFolderOnlyWhenTheFilesBeforeAreTaken)
{
    WriteFile("a\\1.mrc");
    WriteFile("a\\sub\\2.mrc");
    WriteFile("b\\4.mrc");
    FileSource source({L"a", L"b", L"c"}, nullptr, nullptr);
    EXPECT_EQ(source.Next()->name, L"a\\1.mrc");
    WriteFile("a\\sub\\3.mrc");
    EXPECT_EQ(source.Next()->name, L"a\\sub\\2.mrc");
    EXPECT_EQ(source.Next()->name, L"a\\sub\\3.mrc");
    WriteFile("b\\5.mrc");
    WriteFile("c\\6.mrc");
    EXPECT_EQ(source.Next()->name, L"b\\4.mrc");
    EXPECT_EQ(source.Next()->name, L"b\\5.mrc");
    EXPECT_EQ(source.Next()->name, L"c\\6.mrc");
    EXPECT_FALSE(source.Next());
}

} // namespace
