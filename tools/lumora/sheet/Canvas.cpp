#include "lumora/sheet/Canvas.h"

#include "lumora/console/Failure.h"
#include "lumora/console/Unicode.h"

#include <algorithm>
#include <cwchar>

namespace Lumora {

namespace {

/// GDI takes at most 8192 characters at a time, and no cell has room for this many.
constexpr size_t longestText = 1000;

/// Rows of a bitmap in memory begin at multiples of four bytes.
constexpr uint32_t StrideOf(uint32_t width) noexcept
{
    return static_cast<uint32_t>((size_t{width} * PixelBlock::bytesPerPixel + 3) / 4 * 4);
}

/// The font of Windows. If it is missing, GDI uses another one.
LOGFONTW CaptionFont() noexcept
{
    LOGFONTW font = {};
    font.lfHeight = -12; // the letters' own height, without the space above and below
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    // No ClearType: its coloured edges look right only on the screen for which they were made.
    font.lfQuality = ANTIALIASED_QUALITY;
    std::wcscpy(font.lfFaceName, L"Segoe UI");
    return font;
}

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

Canvas::Canvas(uint32_t width, uint32_t wantedHeight)
    : height(wantedHeight), stride(StrideOf(width)), context(CreateCompatibleDC(nullptr))
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = static_cast<LONG>(width);
    info.bmiHeader.biHeight = -static_cast<LONG>(height); // the top row comes first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 8 * PixelBlock::bytesPerPixel;
    info.bmiHeader.biCompression = BI_RGB;
    void* memory = nullptr;
    bitmap.reset(CreateDIBSection(context.get(), &info, DIB_RGB_COLORS, &memory, nullptr, 0));
    if (!context || !bitmap)
        throw Failure{L"there is no memory for a bitmap of " + std::to_wstring(width) + L" x " +
                      std::to_wstring(height) + L" pixels"};
    pixels = static_cast<uint8_t*>(memory);

    const LOGFONTW description = CaptionFont();
    font.reset(CreateFontIndirectW(&description));
    SelectObject(context.get(), bitmap.get());
    SelectObject(context.get(), font.get());
    SelectObject(context.get(), GetStockObject(DC_BRUSH));
    SetBkMode(context.get(), TRANSPARENT);
    SetTextAlign(context.get(), TA_CENTER | TA_TOP);
    TEXTMETRICW metrics = {};
    if (!GetTextMetricsW(context.get(), &metrics))
        throw Failure{L"there is no font to write with"};
    fontHeight = static_cast<uint32_t>(metrics.tmHeight);
}

void Canvas::Fill(const Area& area, COLORREF colour)
{
    SetDCBrushColor(context.get(), colour);
    PatBlt(context.get(), static_cast<int>(area.left), static_cast<int>(area.top),
           static_cast<int>(area.width), static_cast<int>(area.height), PATCOPY);
}

void Canvas::Paint(const PixelBlock& picture, const Area& area)
{
    if (picture.width > area.width || picture.height > area.height)
        throw Failure{L"the picture is too large for its place"};
    // GDI may not have finished drawing yet.
    GdiFlush();
    const uint32_t left = area.left + (area.width - picture.width) / 2;
    const uint32_t top = area.top + (area.height - picture.height) / 2;
    for (uint32_t row = 0; row < picture.height; ++row)
        std::copy_n(picture.pixels.begin() + static_cast<std::ptrdiff_t>(row * picture.Stride()),
                    picture.Stride(), pixels + size_t{top + row} * stride + left * PixelBlock::bytesPerPixel);
}

void Canvas::Write(std::wstring_view text, const Area& area, COLORREF colour)
{
    const std::wstring fitted = Fitted(text, area.width);
    const RECT clip = {static_cast<LONG>(area.left), static_cast<LONG>(area.top),
                       static_cast<LONG>(area.left + area.width), static_cast<LONG>(area.top + area.height)};
    const LONG above = (clip.bottom - clip.top - static_cast<LONG>(fontHeight)) / 2;
    SetTextColor(context.get(), colour);
    ExtTextOutW(context.get(), (clip.left + clip.right) / 2, clip.top + above, ETO_CLIPPED, &clip,
                fitted.data(), static_cast<UINT>(fitted.size()), nullptr);
}

void Canvas::Write(std::wstring_view text, std::span<const Area> lines, COLORREF colour)
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
    GdiFlush();
    return {pixels, size_t{std::min(count, height)} * stride};
}

uint32_t Canvas::WidthOf(std::wstring_view text) const
{
    SIZE size = {};
    if (!GetTextExtentPoint32W(context.get(), text.data(), static_cast<int>(text.size()), &size))
        throw Failure{L"cannot measure the text"};
    return static_cast<uint32_t>(size.cx);
}

/// As many words as have room side by side, but at least one.
std::wstring_view Canvas::FirstLine(std::wstring_view text, uint32_t room) const
{
    std::wstring_view line = text.substr(0, text.find(L' '));
    while (line.size() < text.size())
    {
        const std::wstring_view longer = text.substr(0, text.find(L' ', line.size() + 1));
        if (longer.size() > longestText || WidthOf(longer) > room)
            break;
        line = longer;
    }
    return line;
}

std::wstring Canvas::Fitted(std::wstring_view text, uint32_t room) const
{
    if (text.size() <= longestText && WidthOf(text) <= room)
        return std::wstring(text);
    size_t fitting = 0;
    size_t tooMany = std::min(text.size(), longestText);
    while (tooMany - fitting > 1)
    {
        const size_t kept = (fitting + tooMany) / 2;
        (WidthOf(WithoutMiddle(text, kept)) <= room ? fitting : tooMany) = kept;
    }
    return WithoutMiddle(text, fitting);
}

} // namespace Lumora
