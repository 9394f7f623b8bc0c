#include "windows/gauntlet/FilesBelow.h"

#include <algorithm>

std::vector<std::filesystem::path> FilesBelow(const std::vector<std::wstring>& folders)
{
    std::vector<std::filesystem::path> files;
    for (const std::wstring& folder : folders)
    {
        if (!std::filesystem::is_directory(folder))
        {
            files.emplace_back(folder);
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        {
            if (entry.is_regular_file())
                files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    return files;
}
