#include "windows/clients/TemporaryFolder.h"

#include "support/FileBytes.h"

#include <windows.h>

#include <algorithm>
#include <fstream>

namespace {

/// Deletes a folder, whose paths may be longer than the standard library takes them.
void DeleteFolder(const std::wstring& folder)
{
    WIN32_FIND_DATAW found = {};
    const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return;
    do
    {
        const std::wstring name = found.cFileName;
        const std::wstring entry = folder + L'\\' + name;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            DeleteFileW(entry.c_str());
        else if (name != L"." && name != L"..")
            DeleteFolder(entry);
    } while (FindNextFileW(search, &found));
    FindClose(search);
    RemoveDirectoryW(folder.c_str());
}

} // namespace

TemporaryFolder::TemporaryFolder()
{
    // An earlier process of the same number may have left a folder behind, in which something is still open.
    static int count = 0;
    do
        path = std::filesystem::temp_directory_path() /
               (L"lumora tests " + std::to_wstring(GetCurrentProcessId()) + L'-' + std::to_wstring(++count));
    while (!std::filesystem::create_directories(path));
}

TemporaryFolder::~TemporaryFolder()
{
    DeleteFolder(L"\\\\?\\" + path.native());
}

std::filesystem::path TemporaryFolder::Write(const std::filesystem::path& name,
                                             std::span<const uint8_t> content) const
{
    std::filesystem::path file = path / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
    return file;
}

std::vector<uint8_t> TemporaryFolder::Read(const std::filesystem::path& name) const
{
    return FileBytes(path / name);
}

std::vector<std::string> TemporaryFolder::Files() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path))
    {
        if (entry.is_regular_file())
            names.push_back(entry.path().lexically_relative(path).generic_string());
    }
    std::sort(names.begin(), names.end());
    return names;
}
