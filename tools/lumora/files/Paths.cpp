#include "lumora/files/Paths.h"

namespace Lumora {

bool IsFromRoot(std::wstring_view path) noexcept
{
    // Behind a drive and its colon, too, a path is relative to another folder than the current one.
    const bool namesDrive = path.find_first_of(driveMarks) != std::wstring_view::npos;
    return namesDrive || (!path.empty() && pathSeparators.find(path.front()) != std::wstring_view::npos);
}

std::wstring JoinPath(std::wstring_view folder, std::wstring_view name)
{
    std::wstring path(folder);
    if (!path.empty() && !name.empty() && nameStarters.find(path.back()) == std::wstring_view::npos)
    {
        // Use the separator that the user writes.
        const size_t separator = path.find_first_of(pathSeparators);
        path += separator == std::wstring::npos ? pathSeparators.front() : path[separator];
    }
    return path.append(name);
}

std::wstring_view FileName(std::wstring_view path) noexcept
{
    const size_t end = path.find_last_of(nameStarters);
    return end == std::wstring_view::npos ? path : path.substr(end + 1);
}

std::wstring_view ParentFolder(std::wstring_view path) noexcept
{
    return path.substr(0, path.size() - FileName(path).size());
}

std::wstring_view FileExtension(std::wstring_view path) noexcept
{
    const std::wstring_view name = FileName(path);
    const size_t point = name.rfind(L'.');
    return point == std::wstring_view::npos || point == 0 ? std::wstring_view{} : name.substr(point);
}

std::wstring_view Stem(std::wstring_view path) noexcept
{
    const std::wstring_view name = FileName(path);
    return name.substr(0, name.size() - FileExtension(path).size());
}

std::wstring WithSuffix(std::wstring_view path, std::wstring_view suffix)
{
    const std::wstring_view extension = FileExtension(path);
    return std::wstring(path.substr(0, path.size() - extension.size())).append(suffix).append(extension);
}

std::wstring ProgramFolder()
{
    return std::wstring(ParentFolder(ProgramPath()));
}

} // namespace Lumora
