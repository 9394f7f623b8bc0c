#include "OutputNames.h"

#include "Failure.h"

#include <windows.h>

namespace Lumora {

namespace {

/// Makes the folder and those above it where they are missing.
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

/// Whether both paths lead to one file, however they are spelled.
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

} // namespace

OutputNames::OutputNames(std::wstring pictureFolder, const std::vector<SourceFile>& sources)
    : folder(std::move(pictureFolder))
{
    for (const SourceFile& source : sources)
        taken.emplace(source.path, L"a source");
}

std::wstring OutputNames::Claim(const SourceFile& file, std::optional<uint32_t> frame)
{
    const std::wstring place = JoinPath(folder, file.subfolder);
    std::wstring name(Stem(file.name));
    if (frame)
        name += L'-' + std::to_wstring(*frame);
    name = JoinPath(place, name + L".png");

    const std::wstring path = OpenablePath(name);
    const auto [claim, isNew] = taken.emplace(path, L"the picture of " + file.name);
    const bool isSource = IsSameFile(path, file.path);
    if (!isNew || isSource)
        throw Failure{L"its picture would be " + name + L", which is " +
                      (isSource ? L"the file itself" : claim->second) + L"; -o names another folder"};
    if (!place.empty())
        MakeFolder(place);
    return name;
}

} // namespace Lumora
