#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Lumora {

/// The character at the position, which moves behind it. Half of a surrogate pair gives U+FFFD.
[[nodiscard]] char32_t NextCharacter(std::wstring_view text, size_t& position) noexcept;

/// Appends the character, which is no surrogate, as UTF-8.
void AppendUtf8(std::string& bytes, char32_t character);

/// The text as UTF-8. Half of a surrogate pair becomes U+FFFD.
[[nodiscard]] std::string ToUtf8(std::wstring_view text);

} // namespace Lumora
