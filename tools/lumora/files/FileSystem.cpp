#include "lumora/files/FileSystem.h"

#include "lumora/console/Failure.h"
#include "lumora/files/Paths.h"

#include <windows.h>

namespace Lumora {

void MakeFolder(std::wstring_view folder)
{
    const std::wstring path = OpenablePath(std::wstring(folder));
    if (CreateDirectoryW(path.c_str(), nullptr))
        return;
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS)
        return;
    std::wstring_view parent = ParentFolder(path);
    while (!parent.empty() && (parent.back() == L'\\' || parent.back() == L'/'))
        parent.remove_suffix(1);
    if (error != ERROR_PATH_NOT_FOUND || parent.empty() || parent.size() >= path.size())
        throw Failure{L"cannot make the folder " + std::wstring(folder) + L": " + DescribeError(error)};
    MakeFolder(parent);
    if (!CreateDirectoryW(path.c_str(), nullptr) && GetLastError() != ERROR_ALREADY_EXISTS)
        throw Failure{L"cannot make the folder " + std::wstring(folder) + L": " +
                      DescribeError(GetLastError())};
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
