#include "lumora/sheet/SheetLayout.h"

#include <algorithm>

namespace Lumora {

namespace {

constexpr uint32_t gapAboveText = 8;
constexpr uint32_t lineHeight = 16;
constexpr uint32_t screenWidth = 1920;

/// Few programs can show pictures with more pixels.
constexpr uint32_t mostPixels = 1U << 28;

uint32_t ColumnsOnScreen(uint32_t cellWidth)
{
    return std::clamp((screenWidth - SheetLayout::gap) / (cellWidth + SheetLayout::gap), 1U,
                      SheetLayout::mostColumns);
}

} // namespace

SheetLayout::SheetLayout(const Content& cellContent, std::optional<uint32_t> wantedColumns)
    : content(cellContent), cellWidth(std::max(content.picture.width, content.smallestWidth)),
      columns(wantedColumns.value_or(ColumnsOnScreen(cellWidth)))
{}

uint32_t SheetLayout::WidthOf(uint32_t usedColumns) const noexcept
{
    return gap + usedColumns * (cellWidth + gap);
}

uint32_t SheetLayout::HeightOf(uint32_t rows) const noexcept
{
    return gap + rows * StripHeight();
}

uint32_t SheetLayout::StripHeight() const noexcept
{
    return content.picture.height + gapAboveText + content.lines * lineHeight + gap;
}

uint32_t SheetLayout::MostRows() const noexcept
{
    const uint32_t highest = std::min(longestSide, mostPixels / WidthOf(columns));
    return std::max(1U, (highest - gap) / StripHeight());
}

SheetLayout::Cell SheetLayout::CellAt(uint32_t column) const
{
    const uint32_t left = gap + column * (cellWidth + gap);
    const uint32_t textTop = content.picture.height + gapAboveText;
    Cell cell = {.picture = {left, 0, cellWidth, content.picture.height}, .lines = {}};
    for (uint32_t line = 0; line < content.lines; ++line)
        cell.lines.push_back({left, textTop + line * lineHeight, cellWidth, lineHeight});
    return cell;
}

} // namespace Lumora
