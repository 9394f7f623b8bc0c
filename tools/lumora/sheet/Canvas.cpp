#include "lumora/sheet/Canvas.h"

#include "lumora/console/Failure.h"
#include "lumora/console/Unicode.h"

#include <algorithm>

namespace Lumora {

namespace {

/// No system writes longer lines, and no cell has room for this many characters.
constexpr size_t longestText = 1000;

/// The text with `kept` of its characters, and an ellipsis in the middle instead of the others.
std::wstring WithoutMiddle(std::wstring_view text, size_t kept)
{
    std::wstring_view head = text.substr(0, kept - kept / 2);
    std::wstring_view tail = text.substr(text.size() - kept / 2);
    // A character outside the basic plane is a pair. If only half of the pair is left, it is removed, too.
    if (!head.empty() && IsHighSurrogate(head.back()))
        head.remove_suffix(1);
    if (!tail.empty() && IsLowSurrogate(tail.front()))
        tail.remove_prefix(1);
    return std::wstring(head) + L'\u2026' + std::wstring(tail);
}

} // namespace

void Canvas::Fill(const Area& area, Colour colour)
{
    uint8_t* row = surface.Pixels() + size_t{area.top} * Stride() + size_t{area.left} * channels;
    for (uint32_t y = 0; y < area.height; ++y, row += Stride())
    {
        for (size_t byte = 0; byte < size_t{area.width} * channels; byte += channels)
        {
            row[byte] = colour.blue;
            row[byte + 1] = colour.green;
            row[byte + 2] = colour.red;
        }
    }
}

void Canvas::Paint(const PixelBlock& picture, const Area& area)
{
    if (picture.width > area.width || picture.height > area.height)
        throw Failure{L"the picture is too large for its place"};
    const uint32_t left = area.left + (area.width - picture.width) / 2;
    const uint32_t top = area.top + (area.height - picture.height) / 2;
    uint8_t* const place = surface.Pixels() + size_t{top} * Stride() + size_t{left} * channels;
    for (uint32_t row = 0; row < picture.height; ++row)
        std::copy_n(picture.pixels.begin() + static_cast<std::ptrdiff_t>(row * picture.Stride()),
                    picture.Stride(), place + size_t{row} * Stride());
}

void Canvas::Write(std::wstring_view text, const Area& area, Colour colour)
{
    surface.Write(Fitted(text, area.width), area, colour);
}

void Canvas::Write(std::wstring_view text, std::span<const Area> lines, Colour colour)
{
    while (!lines.empty() && !text.empty())
    {
        const std::wstring_view line = lines.size() == 1 ? text : FirstLine(text, lines.front().width);
        Write(line, lines.front(), colour);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        lines = lines.subspan(1);
    }
}

std::span<uint8_t> Canvas::Rows(uint32_t count) noexcept
{
    return {surface.Pixels(), size_t{std::min(count, height)} * Stride()};
}

/// As many words as have room side by side, but at least one.
std::wstring_view Canvas::FirstLine(std::wstring_view text, uint32_t room) const
{
    std::wstring_view line = text.substr(0, text.find(L' '));
    while (line.size() < text.size())
    {
        const std::wstring_view longer = text.substr(0, text.find(L' ', line.size() + 1));
        if (longer.size() > longestText || surface.WidthOf(longer) > room)
            break;
        line = longer;
    }
    return line;
}

std::wstring Canvas::Fitted(std::wstring_view text, uint32_t room) const
{
    if (text.size() <= longestText && surface.WidthOf(text) <= room)
        return std::wstring(text);
    size_t fitting = 0;
    size_t tooMany = std::min(text.size(), longestText);
    while (tooMany - fitting > 1)
    {
        const size_t kept = (fitting + tooMany) / 2;
        (surface.WidthOf(WithoutMiddle(text, kept)) <= room ? fitting : tooMany) = kept;
    }
    return WithoutMiddle(text, fitting);
}

} // namespace Lumora
