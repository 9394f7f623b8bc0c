#include "lumora/sheet/Montage.h"

#include "lumora/console/Failure.h"
#include "lumora/sheet/Canvas.h"
#include "lumora/sheet/SheetLayout.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace Lumora {

namespace {

constexpr uint32_t usualPictureSide = 256;
/// For a number of six digits.
constexpr uint32_t smallestCellWidth = 48;

constexpr Colour backgroundColour = {48, 48, 48};
constexpr Colour numberColour = {168, 168, 168};

/// As many columns as make the montage about square.
uint32_t ColumnsFor(size_t frames)
{
    const auto root = static_cast<uint32_t>(std::ceil(std::sqrt(static_cast<double>(frames))));
    return std::min(root, SheetLayout::mostColumns);
}

std::vector<uint32_t> WantedFrames(const PictureFile& file, const FrameSelection& selection)
{
    // No montage has room for more.
    constexpr size_t mostFrames = 100'000;
    const uint32_t count = file.FrameCount();
    std::vector<uint32_t> frames;
    for (std::optional<uint32_t> frame = selection.Next(0, count); frame && frames.size() < mostFrames;
         frame = selection.Next(*frame + 1, count))
        frames.push_back(*frame);
    if (frames.empty())
        throw NoFrames(count);
    return frames;
}

} // namespace

Box WriteMontage(Imaging& imaging, const PictureFile& file, const PictureOrder& order,
                 const std::wstring& path)
{
    const std::vector<uint32_t> frames = WantedFrames(file, order.frames);
    const uint32_t side = order.longerSide.value_or(usualPictureSide);
    const PixelBlock first = CopyOf(*file.Frame(frames.front(), Box{side, side}));
    const Box box = {first.width, first.height};
    const uint32_t columns = order.columns.value_or(ColumnsFor(frames.size()));
    const SheetLayout layout({.picture = box, .lines = 1, .smallestWidth = smallestCellWidth}, columns);
    const uint32_t usedColumns = std::min(columns, static_cast<uint32_t>(frames.size()));
    const auto rows = static_cast<uint32_t>((frames.size() + columns - 1) / columns);
    if (rows > layout.MostRows() || layout.WidthOf(usedColumns) > SheetLayout::longestSide)
        throw Failure{
            L"a montage has no room for so many frames; --size makes them smaller, and --frame all/10 "
            L"takes every tenth"};

    const Box size = {layout.WidthOf(usedColumns), layout.HeightOf(rows)};
    PictureWriter writer(imaging, path, order.format, size, Canvas::channels);
    Canvas strip(size.width, layout.StripHeight());
    const Area whole = {0, 0, size.width, strip.Height()};
    strip.Fill(whole, backgroundColour);
    writer.WriteRows(SheetLayout::gap, strip.Stride(), strip.Rows(SheetLayout::gap));
    for (size_t index = 0; index < frames.size(); ++index)
    {
        const auto column = static_cast<uint32_t>(index % columns);
        const SheetLayout::Cell cell = layout.CellAt(column);
        strip.Paint(index == 0 ? first : CopyOf(*file.Frame(frames[index], box)), cell.picture);
        strip.Write(std::to_wstring(frames[index]), cell.lines[0], numberColour);
        if (column + 1 < columns && index + 1 < frames.size())
            continue;
        writer.WriteRows(strip.Height(), strip.Stride(), strip.Rows(strip.Height()));
        strip.Fill(whole, backgroundColour);
    }
    writer.Finish();
    return size;
}

} // namespace Lumora
