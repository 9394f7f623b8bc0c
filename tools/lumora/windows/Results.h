#pragma once

#include "lumora/console/Failure.h"

#include <windows.h>

#include <string>

namespace Lumora {

/// The message if Lumora is not registered.
inline constexpr const wchar_t* notRegistered =
    L"Lumora is not registered with Windows; \"lumora register\" does that";

/// The result in words and by its SDK name, as "access is denied (E_ACCESSDENIED)".
[[nodiscard]] std::wstring DescribeResult(HRESULT result);

/// The error code of a system call in the same form.
[[nodiscard]] std::wstring DescribeError(DWORD error);

/// Throws a failure if the result is one. `what` says what failed: "cannot open the file".
void Require(HRESULT result, const wchar_t* what);

} // namespace Lumora
