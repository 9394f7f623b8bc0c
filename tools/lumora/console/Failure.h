#pragma once

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

/// The message if the standard output takes no more.
inline constexpr const wchar_t* notAllWritten = L"not all of the output could be written";

/// Eight hexadecimal digits of the number: 0xC0000005.
[[nodiscard]] std::wstring HexText(uint32_t number);

/// Does the work. Returns what went wrong: the text of a failure, or what is known of another exception.
[[nodiscard]] std::optional<std::wstring> FailureOf(const std::function<void()>& work);

/// Does the work. A Failure gets the name of what it is about in front.
void WithName(const std::wstring& name, const std::function<void()>& work);

} // namespace Lumora
