#pragma once

#include "lumora/sheet/Canvas.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace Lumora {

/// Where everything on a contact sheet is: cells of one size in rows, each with a place for a picture and
/// lines of text below it. All in pixels.
class SheetLayout
{
public:
    /// The gap around the cells.
    static constexpr uint32_t gap = 16;
    static constexpr uint32_t linesPerCell = 3;

    /// A cell in a strip as wide as the sheet.
    struct Cell
    {
        Area whole;
        Area picture;
        std::array<Area, linesPerCell> lines;
    };

    /// Makes a layout for this number of cells, whose pictures have this side. Without a number of columns,
    /// the sheet is about as wide as a screen, or narrower if there are fewer cells. Throws a Failure if it
    /// would be larger than programs can show.
    SheetLayout(size_t cells, uint32_t pictureSide, std::optional<uint32_t> columns);

    [[nodiscard]] uint32_t Columns() const noexcept { return columns; }
    [[nodiscard]] uint32_t Width() const noexcept { return width; }
    [[nodiscard]] uint32_t Height() const noexcept { return height; }
    /// The height of the strip of one row, with the gap below it. There is another gap above the first strip.
    [[nodiscard]] uint32_t StripHeight() const noexcept;
    /// The cell in that column of a strip.
    [[nodiscard]] Cell CellAt(uint32_t column) const noexcept;

private:
    uint32_t pictureSide;
    uint32_t cellWidth;
    uint32_t columns;
    uint32_t width;
    uint32_t height;
};

} // namespace Lumora
