#include "lumora/sheet/SheetWriter.h"

#include "lumora/console/Failure.h"
#include "lumora/files/Paths.h"
#include "lumora/pictures/PictureWriter.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Lumora {

namespace {

constexpr uint32_t linesPerCell = 3;
constexpr uint32_t smallestCellWidth = 144;

/// Dark, so that it does not outshine the pictures. Not black, because many pictures have black edges.
constexpr Colour backgroundColour = {48, 48, 48};
constexpr Colour emptyPlaceColour = {64, 64, 64};
constexpr Colour nameColour = {236, 236, 236};
constexpr Colour factsColour = {168, 168, 168};
constexpr Colour failureColour = {240, 160, 80};

SheetLayout LayoutOf(uint32_t side, std::optional<uint32_t> columns)
{
    return {{.picture = {side, side}, .lines = linesPerCell, .smallestWidth = smallestCellWidth}, columns};
}

/// The reason in few words: a cell has room for no more. The reader's own are the most exact ones.
std::wstring_view ReasonOf(const FileReport& report)
{
    constexpr std::wstring_view source = L"[Lumora] ";
    if (report.lines.empty())
        return *report.failure;
    std::wstring_view line = report.lines.back();
    if (line.starts_with(source))
        line.remove_prefix(source.size());
    return line;
}

} // namespace

SheetWriter::SheetWriter(Imaging& wantedImaging, std::wstring sheetName, uint32_t side,
                         std::optional<uint32_t> columns, std::optional<uint32_t> rows)
    : imaging(wantedImaging), name(std::move(sheetName)), layout(LayoutOf(side, columns)),
      rowsOfSheet(std::min(rows.value_or(layout.MostRows()), layout.MostRows())),
      strip(layout.WidthOf(layout.Columns()), layout.StripHeight()), store(OpenablePath(name))
{
    strip.Fill({0, 0, layout.WidthOf(layout.Columns()), layout.StripHeight()}, backgroundColour);
}

void SheetWriter::Add(const SourceFile& file, const FileReport& report)
{
    if (row == rowsOfSheet)
        FinishSheet(false);
    const SheetLayout::Cell cell = layout.CellAt(column);
    const Colour colour = report.failure ? failureColour : nameColour;
    strip.Write(JoinPath(file.subfolder, FileName(file.name)), cell.lines[0], colour);
    report.failure ? ShowFailure(report, cell) : ShowPicture(report, cell);
    ++column;
    if (column == layout.Columns())
        FinishRow();
}

std::vector<std::wstring> SheetWriter::Finish()
{
    if (row > 0 || column > 0)
        FinishSheet(true);
    return std::move(names);
}

void SheetWriter::ShowPicture(const FileReport& report, const SheetLayout::Cell& cell)
{
    const FileProperties& properties = *report.properties;
    const std::wstring frames = properties.TextOf(MetadataProperty::FrameCount);
    strip.Paint(*report.thumbnail, cell.picture);
    strip.Write(properties.TextOf(MetadataProperty::Width) + L" x " +
                    properties.TextOf(MetadataProperty::Height) + L", " +
                    properties.TextOf(MetadataProperty::PixelFormat),
                cell.lines[1], factsColour);
    strip.Write(frames + (frames == L"1" ? L" frame" : L" frames"), cell.lines[2], factsColour);
}

void SheetWriter::ShowFailure(const FileReport& report, const SheetLayout::Cell& cell)
{
    strip.Fill(cell.picture, emptyPlaceColour);
    strip.Write(L"cannot be shown", cell.picture, failureColour);
    strip.Write(ReasonOf(report), std::span(cell.lines).subspan(1), factsColour);
}

void SheetWriter::FinishRow()
{
    store.Append(strip.Rows(strip.Height()));
    strip.Fill({0, 0, layout.WidthOf(layout.Columns()), strip.Height()}, backgroundColour);
    column = 0;
    ++row;
}

void SheetWriter::FinishSheet(bool isLast)
{
    // A single row may be shorter than the others would be.
    const uint32_t columns = row == 0 ? column : layout.Columns();
    if (column > 0)
        FinishRow();
    const bool isOnlyOne = isLast && names.empty();
    names.push_back(isOnlyOne ? name : WithSuffix(name, L'-' + std::to_wstring(names.size() + 1)));

    WithName(names.back(), [&] { WriteSheet(layout.WidthOf(columns)); });
}

void SheetWriter::WriteSheet(uint32_t width)
{
    PictureWriter png(imaging, OpenablePath(names.back()), PictureFormat{}, {width, layout.HeightOf(row)},
                      Canvas::channels);
    png.WriteRows(SheetLayout::gap, strip.Stride(), strip.Rows(SheetLayout::gap));
    std::vector<uint8_t> rows(size_t{strip.Stride()} * strip.Height());
    store.Rewind();
    for (; row > 0; --row)
    {
        store.Read(rows);
        png.WriteRows(strip.Height(), strip.Stride(), rows);
    }
    png.Finish();
    store.Rewind();
}

} // namespace Lumora
