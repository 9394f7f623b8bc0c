#include "lumora/files/Paths.h"

#include <windows.h>

namespace Lumora {

namespace {

/// Paths shorter than this need no prefix, not even those of folders.
constexpr size_t plainPathLimit = 248;

int CompareNames(std::wstring_view left, std::wstring_view right) noexcept
{
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE);
}

/// The full path in the form that Windows takes as it is.
std::wstring Unlimited(const std::wstring& full)
{
    if (full.starts_with(L"\\\\?\\"))
        return full;
    if (full.starts_with(L"\\\\"))
        return L"\\\\?\\UNC\\" + full.substr(2);
    return L"\\\\?\\" + full;
}

} // namespace

std::wstring FullPath(const std::wstring& path)
{
    std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    // If Windows cannot make a full path, the path does not change, and opening it then fails with the
    // reason.
    return full.empty() ? path : full;
}

std::wstring OpenablePath(const std::wstring& path)
{
    std::wstring full = FullPath(path);
    return full.size() < plainPathLimit ? full : Unlimited(full);
}

std::wstring OpenablePathIn(const std::wstring& folder, std::wstring_view name)
{
    if (!name.ends_with(L'.') && !name.ends_with(L' '))
        return OpenablePath(JoinPath(folder, name));
    return Unlimited(JoinPath(FullPath(folder.empty() ? L"." : folder), name));
}

std::wstring ProgramPath()
{
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    while (length == path.size())
    {
        path.resize(path.size() * 2);
        length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    }
    path.resize(length);
    return path;
}

bool NameLess::operator()(std::wstring_view left, std::wstring_view right) const noexcept
{
    return CompareNames(left, right) == CSTR_LESS_THAN;
}

bool AreSameName(std::wstring_view left, std::wstring_view right) noexcept
{
    return CompareNames(left, right) == CSTR_EQUAL;
}

} // namespace Lumora
