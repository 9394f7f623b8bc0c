#pragma once

#include "lumora/pictures/PixelBlock.h"

#include <windows.h>

#include <wincodec.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace Lumora {

/// A part of a canvas, in pixels.
struct Area
{
    uint32_t left = 0;
    uint32_t top = 0;
    uint32_t width = 0;
    uint32_t height = 0;
};

/// A bitmap in memory for pictures and text: rows from the top, three bytes to a pixel. All areas must be
/// inside it. Whatever fails throws a Failure.
class Canvas
{
public:
    Canvas(uint32_t width, uint32_t height);

    void Fill(const Area& area, COLORREF colour);

    /// Copies the picture into the middle of an area in which it has room.
    void Paint(const PixelBlock& picture, const Area& area);

    /// Writes one line into the middle of the area. A line that is too long loses its middle, because the
    /// names of a series differ at the end.
    void Write(std::wstring_view text, const Area& area, COLORREF colour);

    /// Writes a text that may take several lines, each into an area. What has no room loses its middle.
    void Write(std::wstring_view text, std::span<const Area> lines, COLORREF colour);

    /// How the pixels are stored.
    static const WICPixelFormatGUID& Format() noexcept { return GUID_WICPixelFormat24bppBGR; }
    /// From one row to the next, in bytes.
    [[nodiscard]] uint32_t Stride() const noexcept { return stride; }
    [[nodiscard]] uint32_t Height() const noexcept { return height; }
    /// The topmost rows.
    [[nodiscard]] std::span<uint8_t> Rows(uint32_t count) noexcept;

private:
    struct ObjectDeleter
    {
        void operator()(HGDIOBJ object) const noexcept { DeleteObject(object); }
    };
    struct ContextDeleter
    {
        void operator()(HDC handle) const noexcept { DeleteDC(handle); }
    };

    [[nodiscard]] uint32_t WidthOf(std::wstring_view text) const;
    [[nodiscard]] std::wstring_view FirstLine(std::wstring_view text, uint32_t room) const;
    [[nodiscard]] std::wstring Fitted(std::wstring_view text, uint32_t room) const;

    const uint32_t height;
    const uint32_t stride;
    uint8_t* pixels = nullptr;
    // These are selected into the context, so they must outlive it.
    std::unique_ptr<std::remove_pointer_t<HBITMAP>, ObjectDeleter> bitmap;
    std::unique_ptr<std::remove_pointer_t<HFONT>, ObjectDeleter> font;
    const std::unique_ptr<std::remove_pointer_t<HDC>, ContextDeleter> context;
    uint32_t fontHeight = 0;
};

} // namespace Lumora
