#include "lumora/sheet/Canvas.h"

#include "lumora/console/Failure.h"
#include "platform/ComPtr.h"

#include <algorithm>
#include <cwchar>

namespace Lumora {

namespace {

constexpr uint32_t bytesPerPixel = 3;

/// Rows of a bitmap in memory begin at multiples of four bytes.
constexpr uint32_t StrideOf(uint32_t width) noexcept
{
    return (width * bytesPerPixel + 3) / 4 * 4;
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
    if (!head.empty() && IS_HIGH_SURROGATE(head.back()))
        head.remove_suffix(1);
    if (!tail.empty() && IS_LOW_SURROGATE(tail.front()))
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
    info.bmiHeader.biBitCount = 8 * bytesPerPixel;
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

void Canvas::Paint(IWICBitmapSource& picture, const Area& area)
{
    UINT pictureWidth = 0;
    UINT pictureHeight = 0;
    Require(picture.GetSize(&pictureWidth, &pictureHeight), L"cannot ask for the picture's size");
    if (pictureWidth > area.width || pictureHeight > area.height)
        throw Failure{L"the picture is too large for its place"};
    // Wine cannot convert gray pixels to three bytes directly, but from four bytes it can.
    ComPtr<IWICBitmapSource> wide;
    ComPtr<IWICBitmapSource> converted;
    Require(WICConvertBitmapSource(GUID_WICPixelFormat32bppBGR, &picture, wide.Put()),
            L"cannot convert the picture");
    Require(WICConvertBitmapSource(Format(), wide.Get(), converted.Put()), L"cannot convert the picture");

    // GDI may not have finished drawing yet.
    GdiFlush();
    const uint32_t left = area.left + (area.width - pictureWidth) / 2;
    const uint32_t top = area.top + (area.height - pictureHeight) / 2;
    const std::span<uint8_t> place =
        Rows(top + pictureHeight).subspan(size_t{top} * stride + size_t{left} * bytesPerPixel);
    Require(converted->CopyPixels(nullptr, stride, static_cast<UINT>(place.size()), place.data()),
            L"cannot decode the frame");
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

std::wstring Canvas::Fitted(std::wstring_view text, uint32_t room) const
{
    // GDI takes at most 8192 characters at a time, and no cell has room for that many.
    constexpr size_t longestText = 1000;
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
