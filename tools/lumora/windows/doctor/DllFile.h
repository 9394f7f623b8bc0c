#pragma once

#include <optional>
#include <string>

namespace Lumora {

/// Why no 64-bit program can use the DLL, as the end of a sentence that begins with its path: "is not there".
/// Nothing if the DLL could be loaded; loading runs its start-up code. A DLL whose bytes have changed since
/// it was linked is not loaded, because it could do anything.
[[nodiscard]] std::optional<std::wstring> DefectOfDll(const std::wstring& path);

} // namespace Lumora
