#pragma once

#include <string>

namespace Lumora {

// In UTF-16, a character outside the basic plane is a pair of surrogates: a high one and a low one.

[[nodiscard]] constexpr bool IsHighSurrogate(wchar_t character) noexcept
{
    return character >= 0xD800 && character <= 0xDBFF;
}

[[nodiscard]] constexpr bool IsLowSurrogate(wchar_t character) noexcept
{
    return character >= 0xDC00 && character <= 0xDFFF;
}

/// Appends the next unit of UTF-16. Where a wchar_t has 32 bits, two surrogates become one character.
inline void AppendUtf16(std::wstring& text, char16_t unit)
{
    const auto character = static_cast<wchar_t>(unit);
    if (sizeof(wchar_t) > 2 && IsLowSurrogate(character) && !text.empty() && IsHighSurrogate(text.back()))
        text.back() = static_cast<wchar_t>(0x10000 + ((text.back() - 0xD800) << 10) + (character - 0xDC00));
    else
        text += character;
}

[[nodiscard]] constexpr bool IsSurrogate(wchar_t character) noexcept
{
    return IsHighSurrogate(character) || IsLowSurrogate(character);
}

} // namespace Lumora
