#include "lumora/sheet/Html.h"

#include "lumora/console/Utf8.h"

#include <cstddef>

namespace Lumora {

namespace {

/// Whether HTML has no place for the code point: for a control, or for one that is set aside for other uses
/// than text.
constexpr bool IsForbidden(char32_t character) noexcept
{
    const bool isControl = (character < 0x20 && character != U'\t' && character != U'\n') ||
                           (character >= 0x7F && character < 0xA0);
    return isControl || (character >= 0xFDD0 && character <= 0xFDEF) || (character & 0xFFFE) == 0xFFFE;
}

/// Whether the byte stands for itself in a part of a path.
constexpr bool IsUnreserved(char byte) noexcept
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') ||
           std::string_view("-._~").find(byte) != std::string_view::npos;
}

} // namespace

std::string HtmlText(std::wstring_view text)
{
    std::string html;
    html.reserve(text.size());
    for (size_t position = 0; position < text.size();)
    {
        const char32_t character = NextCharacter(text, position);
        if (character == U'&')
            html += "&amp;";
        else if (character == U'<')
            html += "&lt;";
        else if (character == U'>')
            html += "&gt;";
        else if (character == U'"')
            html += "&quot;";
        else if (character == U'\'')
            html += "&#39;";
        else
            AppendUtf8(html, IsForbidden(character) ? U'\uFFFD' : character);
    }
    return html;
}

std::string RelativeUrl(std::wstring_view path)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string url;
    for (const char byte : ToUtf8(path))
    {
        if (IsUnreserved(byte) || byte == '/')
        {
            url += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        url += '%';
        url += digits[value >> 4];
        url += digits[value & 0xF];
    }
    return url;
}

} // namespace Lumora
