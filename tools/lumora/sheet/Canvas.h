#pragma once

#include "lumora/pictures/PixelBlock.h"
#include "lumora/sheet/Surface.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Lumora {

/// A bitmap in memory for pictures and text: rows from the top, three bytes to a pixel. All areas must be
/// inside it. Whatever fails throws a Failure.
class Canvas
{
public:
    Canvas(uint32_t width, uint32_t wantedHeight) : height(wantedHeight), surface(width, wantedHeight) {}

    void Fill(const Area& area, Colour colour);

    /// Copies the picture into the middle of an area in which it has room.
    void Paint(const PixelBlock& picture, const Area& area);

    /// Writes one line into the middle of the area. A line that is too long loses its middle, because the
    /// names of a series differ at the end.
    void Write(std::wstring_view text, const Area& area, Colour colour);

    /// Writes a text that may take several lines, each into an area. What has no room loses its middle.
    void Write(std::wstring_view text, std::span<const Area> lines, Colour colour);

    /// Of each pixel, as in a Picture.
    static constexpr uint32_t channels = PixelBlock::bytesPerPixel;
    /// From one row to the next, in bytes.
    [[nodiscard]] uint32_t Stride() const noexcept { return surface.Stride(); }
    [[nodiscard]] uint32_t Height() const noexcept { return height; }
    /// The topmost rows.
    [[nodiscard]] std::span<uint8_t> Rows(uint32_t count) noexcept;

private:
    [[nodiscard]] std::wstring_view FirstLine(std::wstring_view text, uint32_t room) const;
    [[nodiscard]] std::wstring Fitted(std::wstring_view text, uint32_t room) const;

    const uint32_t height;
    Surface surface;
};

} // namespace Lumora
