#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Lumora {

/// Makes the folder and those above it where they are missing. Throws a Failure.
void MakeFolder(std::wstring_view folder);

/// The size of the file in bytes; nothing if it is not there.
[[nodiscard]] std::optional<uint64_t> FileSize(const std::wstring& path) noexcept;

/// Whether the file is there, and not older than the source.
[[nodiscard]] bool IsUpToDate(const std::wstring& path, const std::wstring& source) noexcept;

/// Whether a file has these attributes because its contents are not on this machine, and would be fetched by
/// the first read: from the cloud, or from an archive.
[[nodiscard]] bool IsElsewhere(unsigned long attributes) noexcept;

/// Whether both paths lead to one file, however they are spelled.
[[nodiscard]] bool IsSameFile(const std::wstring& left, const std::wstring& right);

} // namespace Lumora
