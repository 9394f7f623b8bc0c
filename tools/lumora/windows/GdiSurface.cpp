#include "lumora/console/Failure.h"
#include "lumora/sheet/Surface.h"

#include <windows.h>

#include <cwchar>
#include <string>
#include <type_traits>

namespace Lumora {

namespace {

constexpr uint32_t bytesPerPixel = 3;

/// Rows of a bitmap in memory begin at multiples of four bytes.
constexpr uint32_t StrideOf(uint32_t width) noexcept
{
    return static_cast<uint32_t>((size_t{width} * bytesPerPixel + 3) / 4 * 4);
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

struct ObjectDeleter
{
    void operator()(HGDIOBJ object) const noexcept { DeleteObject(object); }
};

struct ContextDeleter
{
    void operator()(HDC handle) const noexcept { DeleteDC(handle); }
};

} // namespace

struct Surface::Means
{
    Means(uint32_t width, uint32_t height);

    const uint32_t stride;
    uint8_t* pixels = nullptr;
    // These are selected into the context, so they must outlive it.
    std::unique_ptr<std::remove_pointer_t<HBITMAP>, ObjectDeleter> bitmap;
    std::unique_ptr<std::remove_pointer_t<HFONT>, ObjectDeleter> font;
    const std::unique_ptr<std::remove_pointer_t<HDC>, ContextDeleter> context;
    uint32_t fontHeight = 0;
};

Surface::Means::Means(uint32_t width, uint32_t height)
    : stride(StrideOf(width)), context(CreateCompatibleDC(nullptr))
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
    SetBkMode(context.get(), TRANSPARENT);
    SetTextAlign(context.get(), TA_CENTER | TA_TOP);
    TEXTMETRICW metrics = {};
    if (!GetTextMetricsW(context.get(), &metrics))
        throw Failure{L"there is no font to write with"};
    fontHeight = static_cast<uint32_t>(metrics.tmHeight);
}

Surface::Surface(uint32_t width, uint32_t height) : means(std::make_unique<Means>(width, height)) {}

Surface::~Surface() = default;

uint8_t* Surface::Pixels() noexcept
{
    // GDI may not have finished drawing yet.
    GdiFlush();
    return means->pixels;
}

uint32_t Surface::Stride() const noexcept
{
    return means->stride;
}

void Surface::Write(std::wstring_view text, const Area& area, Colour colour)
{
    const RECT clip = {static_cast<LONG>(area.left), static_cast<LONG>(area.top),
                       static_cast<LONG>(area.left + area.width), static_cast<LONG>(area.top + area.height)};
    const LONG above = (clip.bottom - clip.top - static_cast<LONG>(means->fontHeight)) / 2;
    SetTextColor(means->context.get(), RGB(colour.red, colour.green, colour.blue));
    ExtTextOutW(means->context.get(), (clip.left + clip.right) / 2, clip.top + above, ETO_CLIPPED, &clip,
                text.data(), static_cast<UINT>(text.size()), nullptr);
}

uint32_t Surface::WidthOf(std::wstring_view text) const
{
    SIZE size = {};
    if (!GetTextExtentPoint32W(means->context.get(), text.data(), static_cast<int>(text.size()), &size))
        throw Failure{L"cannot measure the text"};
    return static_cast<uint32_t>(size.cx);
}

} // namespace Lumora
