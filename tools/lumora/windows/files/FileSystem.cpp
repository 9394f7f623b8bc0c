#include "lumora/files/FileSystem.h"

#include "lumora/console/Failure.h"
#include "lumora/files/Paths.h"

#include <windows.h>

namespace Lumora {

namespace {

std::optional<WIN32_FILE_ATTRIBUTE_DATA> AttributesOf(const std::wstring& path) noexcept
{
    WIN32_FILE_ATTRIBUTE_DATA attributes = {};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &attributes))
        return std::nullopt;
    return attributes;
}

bool IsFolder(const std::wstring& path) noexcept
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

} // namespace

void MakeFolder(std::wstring_view folder)
{
    const std::wstring path = OpenablePath(std::wstring(folder));
    if (IsFolder(path) || CreateDirectoryW(path.c_str(), nullptr))
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
    if (error != ERROR_SUCCESS && !IsFolder(path))
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

bool IsElsewhere(unsigned long attributes) noexcept
{
    // Services of the cloud set one of these two, which not all headers know; archives set the third one.
    constexpr DWORD recallOnOpen = 0x00040000;
    constexpr DWORD recallOnDataAccess = 0x00400000;
    return (attributes & (recallOnOpen | recallOnDataAccess | FILE_ATTRIBUTE_OFFLINE)) != 0;
}

bool IsSameFile(const std::wstring& left, const std::wstring& right)
{
    const auto identify = [](const std::wstring& path, BY_HANDLE_FILE_INFORMATION& information) {
        const HANDLE file = CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
        const bool isKnown =
            file != INVALID_HANDLE_VALUE && GetFileInformationByHandle(file, &information) != FALSE;
        if (file != INVALID_HANDLE_VALUE)
            CloseHandle(file);
        return isKnown;
    };
    BY_HANDLE_FILE_INFORMATION first = {};
    BY_HANDLE_FILE_INFORMATION second = {};
    return identify(left, first) && identify(right, second) &&
           first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
           first.nFileIndexHigh == second.nFileIndexHigh && first.nFileIndexLow == second.nFileIndexLow;
}

} // namespace Lumora
