#pragma once

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

[[nodiscard]] constexpr bool IsSurrogate(wchar_t character) noexcept
{
    return IsHighSurrogate(character) || IsLowSurrogate(character);
}

} // namespace Lumora
