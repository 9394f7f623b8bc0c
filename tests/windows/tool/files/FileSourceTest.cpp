#include "lumora/files/FileSource.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/support/ImportHook.h"

#include <windows.h>

#include <shlwapi.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The attributes that every file has in addition to its own.
DWORD addedAttributes = 0;
/// The tag with which every folder is a reparse point; 0 if none is.
DWORD folderTag = 0;
/// The names of the files that have been opened.
std::vector<std::wstring> opened;

void AddAttributes(WIN32_FIND_DATAW& found)
{
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        found.dwFileAttributes |= addedAttributes;
    else if (folderTag != 0)
    {
        found.dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
        found.dwReserved0 = folderTag;
    }
}

HANDLE WINAPI FindFirst(const wchar_t* pattern, WIN32_FIND_DATAW* found)
{
    const HANDLE search =
        FindFirstFileExW(pattern, FindExInfoStandard, found, FindExSearchNameMatch, nullptr, 0);
    AddAttributes(*found);
    return search;
}

BOOL WINAPI FindNext(HANDLE search, WIN32_FIND_DATAW* found)
{
    static const auto find = reinterpret_cast<decltype(&FindNextFileW)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "FindNextFileW")));
    const BOOL result = find(search, found);
    AddAttributes(*found);
    return result;
}

bool IsReadable(const std::wstring& path)
{
    opened.emplace_back(PathFindFileNameW(path.c_str()));
    return false;
}

/// The names of the files in the folder that count, when all of them have these attributes.
std::vector<std::wstring> CountingFiles(const std::filesystem::path& folder, DWORD attributes)
{
    const HMODULE program = GetModuleHandleW(nullptr);
    const ImportHook first(program, "FindFirstFileW", FindFirst);
    const ImportHook next(program, "FindNextFileW", FindNext);
    addedAttributes = attributes;
    opened.clear();
    std::vector<std::wstring> names;
    for (const Lumora::SourceFile& file : Lumora::AllFilesOf({{folder.wstring()}, nullptr, IsReadable}).files)
        names.emplace_back(PathFindFileNameW(file.path.c_str()));
    return names;
}

TEST(FileSource, FetchesNoFileFromTheCloudToLookAtIt)
{
    const TemporaryFolder folder;
    folder.Write("known.mrc", std::vector<uint8_t>(1));
    folder.Write("unknown.dat", std::vector<uint8_t>(1));
    EXPECT_THAT(CountingFiles(folder.Path(), FILE_ATTRIBUTE_ARCHIVE), ElementsAre(L"known.mrc"));
    EXPECT_THAT(opened, ElementsAre(L"unknown.dat"));

    constexpr DWORD recallOnOpen = 0x00040000;
    constexpr DWORD recallOnDataAccess = 0x00400000;
    for (const DWORD attribute : {DWORD{FILE_ATTRIBUTE_OFFLINE}, recallOnOpen, recallOnDataAccess})
    {
        EXPECT_THAT(CountingFiles(folder.Path(), attribute), ElementsAre(L"known.mrc")) << attribute;
        EXPECT_THAT(opened, IsEmpty()) << attribute;
    }
}

TEST(FileSource, FollowsFoldersOfTheCloudButNoLinks)
{
    const TemporaryFolder folder;
    folder.Write("sub\\known.mrc", std::vector<uint8_t>(1));
    constexpr DWORD cloud = 0x9000101A;
    constexpr DWORD mountPoint = 0xA0000003;
    folderTag = cloud;
    EXPECT_THAT(CountingFiles(folder.Path(), 0), ElementsAre(L"known.mrc"));
    folderTag = mountPoint;
    EXPECT_THAT(CountingFiles(folder.Path(), 0), IsEmpty());
    folderTag = 0;
}

// Windows takes dots and spaces off the end of a name that does not begin in a special way.
TEST(FileSource, OpensFilesWhoseNamesEndInADotOrASpace)
{
    const TemporaryFolder folder;
    for (const wchar_t* const name : {L"a.mrc.", L"a.mrc "})
    {
        const std::wstring path = L"\\\\?\\" + (folder.Path() / name).wstring();
        const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        CloseHandle(file);
    }
    folder.Write("a.mrc", std::vector<uint8_t>(1));
    std::vector<std::wstring> paths;
    const auto test = [&paths](const std::wstring& path) {
        paths.push_back(path);
        return false;
    };
    static_cast<void>(Lumora::AllFilesOf({{folder.Path().wstring()}, nullptr, test}));
    const std::wstring unlimited = L"\\\\?\\" + (folder.Path() / "a.mrc").wstring();
    EXPECT_THAT(paths, testing::UnorderedElementsAre(unlimited + L".", unlimited + L" "));
    for (const std::wstring& path : paths)
        EXPECT_TRUE(DeleteFileW(path.c_str()));
}

} // namespace
