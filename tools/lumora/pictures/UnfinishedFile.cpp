#include "lumora/pictures/UnfinishedFile.h"

#include "lumora/console/Failure.h"
#include "lumora/files/FileSystem.h"
#include "lumora/files/Paths.h"

#include <windows.h>

namespace Lumora {

namespace {

std::wstring UnfinishedName(const std::wstring& finalPath)
{
    return finalPath + L".lumora-part";
}

/// Whether the file is empty, or begins like this.
bool IsReplaceable(const std::wstring& path, std::string_view signature)
{
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    std::string start(signature.size(), '\0');
    DWORD count = 0;
    const BOOL isRead = ReadFile(file, start.data(), static_cast<DWORD>(start.size()), &count, nullptr);
    CloseHandle(file);
    return isRead && (count == 0 || start == signature);
}

} // namespace

UnfinishedFile::UnfinishedFile(const std::wstring& finalPath, std::string_view signature)
    : path(UnfinishedName(finalPath)), target(finalPath)
{
    if (const std::wstring_view folder = ParentFolder(finalPath); !folder.empty())
        MakeFolder(folder);
    RequireFreePlace(target, signature);
}

UnfinishedFile::~UnfinishedFile()
{
    DeleteFileW(path.c_str());
}

void UnfinishedFile::RequireFreePlace(const std::wstring& finalPath, std::string_view signature)
{
    const std::wstring_view last = FileName(finalPath);
    const std::wstring name = last.empty() ? finalPath : std::wstring(last);
    const DWORD attributes = GetFileAttributesW(finalPath.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        throw Failure{L"there is a folder of the name " + name + L"; -o names another place"};
    if (!IsReplaceable(finalPath, signature))
        throw Failure{L"there is a file of another kind of the name " + name + L"; -o names another place"};
}

bool UnfinishedFile::WasLeftBehind(const std::wstring& finalPath) noexcept
{
    return GetFileAttributesW(UnfinishedName(finalPath).c_str()) != INVALID_FILE_ATTRIBUTES;
}

void UnfinishedFile::Keep() const
{
    // A virus scanner, or a program that shows the earlier picture, may hold a file for a moment.
    constexpr int mostAttempts = 10;
    constexpr DWORD pause = 50;
    bool isNamed = false;
    for (int attempt = 0; !isNamed && attempt < mostAttempts; ++attempt)
    {
        if (attempt > 0)
            Sleep(pause);
        isNamed = MoveFileExW(path.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE;
    }
    if (!isNamed)
        throw Failure{L"cannot give the file its name: " + DescribeError(GetLastError())};
}

} // namespace Lumora
