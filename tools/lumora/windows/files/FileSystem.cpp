#include "lumora/files/FileSystem.h"

#include "lumora/files/Paths.h"
#include "lumora/windows/Results.h"

#include <windows.h>

#include <memory>

namespace Lumora {

namespace {

std::optional<WIN32_FILE_ATTRIBUTE_DATA> AttributesOf(const std::wstring& path) noexcept
{
    WIN32_FILE_ATTRIBUTE_DATA attributes = {};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &attributes))
        return std::nullopt;
    return attributes;
}

struct FindCloser
{
    void operator()(HANDLE search) const noexcept { FindClose(search); }
};

/// Folders of the cloud are reparse points, too, but no links.
bool IsLink(const WIN32_FIND_DATAW& found) noexcept
{
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           IsReparseTagNameSurrogate(found.dwReserved0);
}

/// Services of the cloud set one of the first two attributes, which not all headers know; archives set the
/// third one.
bool IsElsewhere(DWORD attributes) noexcept
{
    constexpr DWORD recallOnOpen = 0x00040000;
    constexpr DWORD recallOnDataAccess = 0x00400000;
    return (attributes & (recallOnOpen | recallOnDataAccess | FILE_ATTRIBUTE_OFFLINE)) != 0;
}

} // namespace

PathKind KindOf(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        throw Failure{DescribeError(GetLastError())};
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? PathKind::Folder : PathKind::File;
}

std::optional<PathKind> FoundAt(const std::wstring& path) noexcept
{
    const std::optional<WIN32_FILE_ATTRIBUTE_DATA> attributes = AttributesOf(path);
    if (!attributes)
        return std::nullopt;
    return (attributes->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? PathKind::Folder : PathKind::File;
}

std::vector<FolderEntry> ListFolder(const std::wstring& folder, const std::wstring& pattern)
{
    std::vector<FolderEntry> entries;
    WIN32_FIND_DATAW found = {};
    const HANDLE first = FindFirstFileW(OpenablePath(JoinPath(folder, pattern)).c_str(), &found);
    if (first == INVALID_HANDLE_VALUE)
    {
        const DWORD error = GetLastError();
        if (error == ERROR_FILE_NOT_FOUND)
            return entries;
        throw Failure{DescribeError(error)};
    }
    const std::unique_ptr<void, FindCloser> search(first);
    do
    {
        const std::wstring name = found.cFileName;
        if (name != L"." && name != L"..")
            entries.push_back({name, (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0, IsLink(found),
                               IsElsewhere(found.dwFileAttributes)});
    } while (FindNextFileW(first, &found));
    if (const DWORD error = GetLastError(); error != ERROR_NO_MORE_FILES)
        throw Failure{DescribeError(error)};
    return entries;
}

void MakeFolder(std::wstring_view folder)
{
    const std::wstring path = OpenablePath(std::wstring(folder));
    if (FoundAt(path) == PathKind::Folder || CreateDirectoryW(path.c_str(), nullptr))
        return;
    DWORD error = GetLastError();
    std::wstring_view parent = ParentFolder(path);
    while (!parent.empty() && (parent.back() == L'\\' || parent.back() == L'/'))
        parent.remove_suffix(1);
    if (error == ERROR_PATH_NOT_FOUND && !parent.empty() && parent.size() < path.size())
    {
        MakeFolder(parent);
        error = CreateDirectoryW(path.c_str(), nullptr) ? ERROR_SUCCESS : GetLastError();
    }
    // Another process may have made it in the meantime.
    if (error != ERROR_SUCCESS && FoundAt(path) != PathKind::Folder)
        throw Failure{L"cannot make the folder " + std::wstring(folder) + L": " + DescribeError(error)};
}

std::optional<uint64_t> FileSize(const std::wstring& path) noexcept
{
    const std::optional<WIN32_FILE_ATTRIBUTE_DATA> attributes = AttributesOf(path);
    if (!attributes)
        return std::nullopt;
    return uint64_t{attributes->nFileSizeHigh} << 32 | attributes->nFileSizeLow;
}

bool IsUpToDate(const std::wstring& path, const std::wstring& source) noexcept
{
    const std::optional<WIN32_FILE_ATTRIBUTE_DATA> target = AttributesOf(path);
    const std::optional<WIN32_FILE_ATTRIBUTE_DATA> origin = AttributesOf(source);
    return target && origin && CompareFileTime(&target->ftLastWriteTime, &origin->ftLastWriteTime) >= 0;
}

void RemoveFile(const std::wstring& path) noexcept
{
    DeleteFileW(path.c_str());
}

void RenameFile(const std::wstring& from, const std::wstring& to)
{
    // A virus scanner, or a program that shows the earlier picture, may hold a file for a moment.
    constexpr int mostAttempts = 10;
    constexpr DWORD pause = 50;
    for (int attempt = 0; attempt < mostAttempts; ++attempt)
    {
        if (attempt > 0)
            Sleep(pause);
        if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING))
            return;
    }
    throw Failure{DescribeError(GetLastError())};
}

} // namespace Lumora
