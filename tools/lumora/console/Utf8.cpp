#include "lumora/console/Utf8.h"

#include "lumora/console/Unicode.h"

namespace Lumora {

// Characters beyond the basic plane are pairs where wchar_t has 16 bits, and one unit where it has 32.
char32_t NextCharacter(std::wstring_view text, size_t& position) noexcept
{
    const wchar_t unit = text[position++];
    const auto value = static_cast<char32_t>(unit);
    if (IsHighSurrogate(unit) && position < text.size() && IsLowSurrogate(text[position]))
        return 0x10000 + ((value - 0xD800) << 10) + (static_cast<char32_t>(text[position++]) - 0xDC00);
    return IsSurrogate(unit) || value > 0x10FFFF ? U'\uFFFD' : value;
}

void AppendUtf8(std::string& bytes, char32_t character)
{
    const auto append = [&bytes](char32_t byte) { bytes += static_cast<char>(byte); };
    const auto appendTail = [&append, character](int shift) { append(0x80 | ((character >> shift) & 0x3F)); };
    if (character < 0x80)
    {
        append(character);
    }
    else if (character < 0x800)
    {
        append(0xC0 | (character >> 6));
        appendTail(0);
    }
    else if (character < 0x10000)
    {
        append(0xE0 | (character >> 12));
        appendTail(6);
        appendTail(0);
    }
    else
    {
        append(0xF0 | (character >> 18));
        appendTail(12);
        appendTail(6);
        appendTail(0);
    }
}

std::string ToUtf8(std::wstring_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (size_t position = 0; position < text.size();)
    {
        const auto unit = static_cast<char32_t>(text[position]);
        const bool isByte = sizeof(wchar_t) > 2 && unit >= escapedByte + 0x80 && unit <= escapedByte + 0xFF;
        const char32_t character = NextCharacter(text, position);
        if (isByte)
            bytes += static_cast<char>(unit - escapedByte);
        else
            AppendUtf8(bytes, character);
    }
    return bytes;
}

} // namespace Lumora
