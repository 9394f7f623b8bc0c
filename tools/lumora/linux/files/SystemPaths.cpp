#include "lumora/files/NameText.h"
#include "lumora/files/Paths.h"
#include "lumora/linux/files/FileHandle.h"

#include <algorithm>
#include <compare>
#include <filesystem>
#include <system_error>

namespace Lumora {

namespace {

wchar_t WithoutCase(wchar_t character) noexcept
{
    // The order must not depend on the language of the user, so only ASCII has cases here.
    return character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - L'a' + L'A') : character;
}

/// If there is no current folder, the path does not change, and opening it then fails with the reason.
std::filesystem::path Absolute(const std::wstring& path)
{
    const std::filesystem::path given = BytesOfName(path);
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(given, error);
    return error ? given : absolute;
}

} // namespace

std::wstring FullPath(const std::wstring& path)
{
    return TextOfName(Absolute(path).lexically_normal().native());
}

std::wstring OpenablePath(const std::wstring& path)
{
    // The folder above a link is another one than the folder above the link's target.
    const std::filesystem::path absolute = Absolute(path);
    const bool goesUp = std::ranges::find(absolute, "..") != absolute.end();
    return TextOfName(goesUp ? absolute.native() : absolute.lexically_normal().native());
}

std::wstring OpenablePathIn(const std::wstring& folder, std::wstring_view name)
{
    return OpenablePath(JoinPath(folder, name));
}

std::wstring ProgramPath()
{
    std::error_code error;
    return TextOfName(std::filesystem::read_symlink("/proc/self/exe", error).native());
}

bool NameLess::operator()(std::wstring_view left, std::wstring_view right) const noexcept
{
    const auto order = std::lexicographical_compare_three_way(
        left.begin(), left.end(), right.begin(), right.end(),
        [](wchar_t one, wchar_t other) { return WithoutCase(one) <=> WithoutCase(other); });
    // Names that differ in case only are different names.
    return std::is_eq(order) ? left < right : std::is_lt(order);
}

bool AreSameName(std::wstring_view left, std::wstring_view right) noexcept
{
    return left == right;
}

} // namespace Lumora
