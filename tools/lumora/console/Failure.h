#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace Lumora {

/// Something that could not be done, in words. Thrown for one file, it ends the work on that file.
struct Failure
{
    std::wstring text;
};

/// The message if Lumora is not registered.
inline constexpr const wchar_t* notRegistered =
    L"Lumora is not registered with Windows; \"lumora register\" does that";

/// The message if the standard output takes no more.
inline constexpr const wchar_t* notAllWritten = L"not all of the output could be written";

/// The number as Windows writes results and exit codes: 0xC0000005.
[[nodiscard]] std::wstring HexText(uint32_t number);

/// The result in words and by its SDK name, as "access is denied (E_ACCESSDENIED)".
[[nodiscard]] std::wstring DescribeResult(HRESULT result);

/// The error code of a system call in the same form.
[[nodiscard]] std::wstring DescribeError(DWORD error);

/// Throws a failure if the result is one. `what` says what failed: "cannot open the file".
void Require(HRESULT result, const wchar_t* what);

/// Does the work. Returns what went wrong: the text of a failure, or what is known of another exception.
[[nodiscard]] std::optional<std::wstring> FailureOf(const std::function<void()>& work);

/// Does the work. A Failure gets the name of what it is about in front.
void WithName(const std::wstring& name, const std::function<void()>& work);

} // namespace Lumora
