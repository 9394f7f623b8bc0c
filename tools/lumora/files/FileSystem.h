#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Lumora {

enum class PathKind
{
    File,
    Folder,
    /// A pipe, a device, or a link that leads nowhere.
    Other,
};

/// What is there. Throws a Failure with the reason if nothing can be found.
[[nodiscard]] PathKind KindOf(const std::wstring& path);

/// What is there; nothing if nothing can be found.
[[nodiscard]] std::optional<PathKind> FoundAt(const std::wstring& path) noexcept;

struct FolderEntry
{
    std::wstring name;
    bool isFolder;
    /// A link to another place, which may lead back to the folder of the link.
    bool isLink;
    /// The contents are not on this machine, and would be fetched by the first read: from the cloud, or from
    /// an archive.
    bool isElsewhere;
};

/// The entries of a folder that match a pattern with * and ?, in no order. Throws a Failure with the reason.
[[nodiscard]] std::vector<FolderEntry> ListFolder(const std::wstring& folder, const std::wstring& pattern);

/// Makes the folder and those above it where they are missing. Throws a Failure.
void MakeFolder(std::wstring_view folder);

/// The size of the file in bytes; nothing if it is not there.
[[nodiscard]] std::optional<uint64_t> FileSize(const std::wstring& path) noexcept;

/// Whether the file is there, and not older than the source.
[[nodiscard]] bool IsUpToDate(const std::wstring& path, const std::wstring& source) noexcept;

void RemoveFile(const std::wstring& path) noexcept;

/// Gives the file another name, and replaces a file of that name. Throws a Failure with the reason.
void RenameFile(const std::wstring& from, const std::wstring& to);

// What the names of files end with that are there only while the program works.
inline constexpr const wchar_t* unfinishedFileEnd = L".lumora-part";
inline constexpr const wchar_t* rowsFileEnd = L".lumora-rows";

/// Whether a file has the name of a temporary one. Another process may be writing it.
[[nodiscard]] constexpr bool IsTemporaryName(std::wstring_view name) noexcept
{
    return name.ends_with(unfinishedFileEnd) || name.ends_with(rowsFileEnd);
}

} // namespace Lumora
