#include "lumora/sheet/SheetLayout.h"

#include "lumora/console/Failure.h"

#include <algorithm>

namespace Lumora {

namespace {

/// Even the smallest pictures need some room for the text below them.
constexpr uint32_t smallestCellWidth = 144;
constexpr uint32_t gapAboveText = 8;
constexpr uint32_t lineHeight = 16;
constexpr uint32_t screenWidth = 1920;

/// Few programs can show pictures with longer sides.
constexpr uint64_t longestSide = 65'535;

uint32_t ColumnsOnScreen(uint32_t cellWidth)
{
    return std::max(1U, (screenWidth - SheetLayout::gap) / (cellWidth + SheetLayout::gap));
}

} // namespace

SheetLayout::SheetLayout(size_t cells, uint32_t side, std::optional<uint32_t> wantedColumns)
    : pictureSide(side), cellWidth(std::max(side, smallestCellWidth))
{
    const uint64_t sideBySide = std::min<uint64_t>(cells, wantedColumns.value_or(ColumnsOnScreen(cellWidth)));
    const uint64_t rows = (cells + sideBySide - 1) / sideBySide;
    const uint64_t fullWidth = gap + sideBySide * (cellWidth + gap);
    const uint64_t fullHeight = gap + rows * StripHeight();
    if (fullWidth > longestSide || fullHeight > longestSide)
        throw Failure{std::to_wstring(cells) + L" files would make a sheet of " + std::to_wstring(fullWidth) +
                      L" x " + std::to_wstring(fullHeight) + L" pixels, and no side may be longer than " +
                      std::to_wstring(longestSide) + L"; --size and --columns change it"};
    columns = static_cast<uint32_t>(sideBySide);
    width = static_cast<uint32_t>(fullWidth);
    height = static_cast<uint32_t>(fullHeight);
}

uint32_t SheetLayout::StripHeight() const noexcept
{
    return CellAt(0).whole.height + gap;
}

SheetLayout::Cell SheetLayout::CellAt(uint32_t column) const noexcept
{
    const uint32_t left = gap + column * (cellWidth + gap);
    const uint32_t textTop = pictureSide + gapAboveText;
    Cell cell = {.whole = {left, 0, cellWidth, textTop + linesPerCell * lineHeight},
                 .picture = {left, 0, cellWidth, pictureSide},
                 .lines = {}};
    for (uint32_t line = 0; line < linesPerCell; ++line)
        cell.lines[line] = {left, textTop + line * lineHeight, cellWidth, lineHeight};
    return cell;
}

} // namespace Lumora
