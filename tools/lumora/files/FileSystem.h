#pragma once

#include <string>
#include <string_view>

namespace Lumora {

/// Makes the folder and those above it where they are missing. Throws a Failure.
void MakeFolder(std::wstring_view folder);

/// Whether both paths lead to one file, however they are spelled.
[[nodiscard]] bool IsSameFile(const std::wstring& left, const std::wstring& right);

} // namespace Lumora
