#pragma once

#include <string>
#include <string_view>

namespace Lumora {

/// What separates the parts of a path; the first one is the usual one. What can stand before a name, and
/// what stands behind a drive.
#ifdef _WIN32
inline constexpr std::wstring_view pathSeparators = L"\\/";
inline constexpr std::wstring_view nameStarters = L"\\/:";
inline constexpr std::wstring_view driveMarks = L":";
#else
inline constexpr std::wstring_view pathSeparators = L"/";
inline constexpr std::wstring_view nameStarters = pathSeparators;
inline constexpr std::wstring_view driveMarks = {};
#endif

/// Whether the path does not begin in the current folder.
[[nodiscard]] bool IsFromRoot(std::wstring_view path) noexcept;

/// The path from its root on.
[[nodiscard]] std::wstring FullPath(const std::wstring& path);

/// The path from its root on, in a form that the system opens however long it is.
[[nodiscard]] std::wstring OpenablePath(const std::wstring& path);

/// The same for a file that was found in a folder. Windows takes dots and spaces off the end of other names.
[[nodiscard]] std::wstring OpenablePathIn(const std::wstring& folder, std::wstring_view name);

/// A name below a folder. An empty folder is the current one.
[[nodiscard]] std::wstring JoinPath(std::wstring_view folder, std::wstring_view name);

/// The last part of a path.
[[nodiscard]] std::wstring_view FileName(std::wstring_view path) noexcept;

/// The path up to its last part; empty when there is only one.
[[nodiscard]] std::wstring_view ParentFolder(std::wstring_view path) noexcept;

/// The last part without its extension.
[[nodiscard]] std::wstring_view Stem(std::wstring_view path) noexcept;

/// The extension with its dot, or nothing. A dot at the beginning of a name starts no extension.
[[nodiscard]] std::wstring_view FileExtension(std::wstring_view path) noexcept;

/// The path with this text behind the name, before its extension.
[[nodiscard]] std::wstring WithSuffix(std::wstring_view path, std::wstring_view suffix);

/// The file of this program.
[[nodiscard]] std::wstring ProgramPath();

/// The folder in which this program lies.
[[nodiscard]] std::wstring ProgramFolder();

/// Orders names as people expect it: without regard to case. Names are equal if the system says so.
struct NameLess
{
    [[nodiscard]] bool operator()(std::wstring_view left, std::wstring_view right) const noexcept;
};

[[nodiscard]] bool AreSameName(std::wstring_view left, std::wstring_view right) noexcept;

} // namespace Lumora
