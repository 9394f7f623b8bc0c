#pragma once

#include "lumora/pictures/PictureFile.h"
#include "lumora/sheet/Canvas.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Lumora {

/// Where everything on a sheet is: cells of one size in rows, each with a place for a picture and lines of
/// text below it. All in pixels.
class SheetLayout
{
public:
    /// The gap around the cells.
    static constexpr uint32_t gap = 16;
    static constexpr uint32_t mostColumns = 32;
    /// Few programs can show pictures with longer sides.
    static constexpr uint32_t longestSide = 65'535;

    /// What a cell has room for.
    struct Content
    {
        Box picture;
        uint32_t lines = 0;
        /// The text needs some width, however small the picture is.
        uint32_t smallestWidth = 0;
    };

    /// A cell in a strip as wide as the sheet.
    struct Cell
    {
        Area picture;
        std::vector<Area> lines;
    };

    /// So many cells side by side, or as many as a screen shows.
    SheetLayout(const Content& content, std::optional<uint32_t> columns);

    [[nodiscard]] uint32_t Columns() const noexcept { return columns; }
    /// The width of a sheet with so many columns.
    [[nodiscard]] uint32_t WidthOf(uint32_t usedColumns) const noexcept;
    /// The height of a sheet with so many rows.
    [[nodiscard]] uint32_t HeightOf(uint32_t rows) const noexcept;
    /// The height of the strip of one row, with the gap below it. There is another gap above the first strip.
    [[nodiscard]] uint32_t StripHeight() const noexcept;
    /// How many rows a sheet can have, so that programs can still show it.
    [[nodiscard]] uint32_t MostRows() const noexcept;
    /// The cell in that column of a strip.
    [[nodiscard]] Cell CellAt(uint32_t column) const;

private:
    Content content;
    uint32_t cellWidth;
    uint32_t columns;
};

} // namespace Lumora
