#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Lumora {

/// The character at the position, which moves behind it. Half of a surrogate pair gives U+FFFD.
[[nodiscard]] char32_t NextCharacter(std::wstring_view text, size_t& position) noexcept;

/// Appends the character, which is no surrogate, as UTF-8.
void AppendUtf8(std::string& bytes, char32_t character);

/// Where a wchar_t has 32 bits, a name can hold bytes that are not valid UTF-8: each is kept as this number
/// plus the byte, which is half of a surrogate pair.
inline constexpr char32_t escapedByte = 0xDC00;

/// The text as UTF-8, with such bytes as they were. Other halves of surrogate pairs become U+FFFD.
[[nodiscard]] std::string ToUtf8(std::wstring_view text);

} // namespace Lumora
