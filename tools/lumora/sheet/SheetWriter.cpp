#include "lumora/sheet/SheetWriter.h"

#include "lumora/files/Paths.h"
#include "lumora/pictures/PictureFile.h"
#include "lumora/pictures/PropertyReader.h"

#include <algorithm>
#include <string_view>

namespace Lumora {

namespace {

/// Dark, so that it does not outshine the pictures. Not black, because many pictures have black edges.
constexpr COLORREF backgroundColour = RGB(48, 48, 48);
constexpr COLORREF emptyPlaceColour = RGB(64, 64, 64);
constexpr COLORREF nameColour = RGB(236, 236, 236);
constexpr COLORREF factsColour = RGB(168, 168, 168);
constexpr COLORREF failureColour = RGB(240, 160, 80);

/// The value of the property with that name in words; empty when the file does not have it.
std::wstring TextOf(const std::vector<PropertyReading>& readings, std::wstring_view name)
{
    const auto found = std::find_if(readings.begin(), readings.end(),
                                    [name](const PropertyReading& reading) { return reading.name == name; });
    if (found == readings.end())
        return {};
    if (const uint32_t* const number = std::get_if<uint32_t>(&found->value))
        return std::to_wstring(*number);
    const std::wstring* const words = std::get_if<std::wstring>(&found->value);
    return words ? *words : std::wstring();
}

} // namespace

SheetWriter::SheetWriter(IWICImagingFactory& wicFactory, const SheetLayout& sheetLayout, uint32_t side,
                         const std::wstring& path)
    : factory(wicFactory), layout(sheetLayout), pictureSide(side),
      png(factory, path, layout.Width(), layout.Height(), Canvas::Format()),
      strip(layout.Width(), layout.StripHeight())
{
    strip.Fill({0, 0, layout.Width(), strip.Height()}, backgroundColour);
    png.WriteRows(SheetLayout::gap, strip.Stride(), strip.Rows(SheetLayout::gap));
}

void SheetWriter::Show(const SourceFile& file)
{
    const SheetLayout::Cell cell = layout.CellAt(column);
    const PictureFile picture(factory, file.path);
    strip.Paint(*picture.Frame(0, pictureSide).Get(), cell.picture);

    const std::vector<PropertyReading> readings = ReadProperties(file.path);
    const std::wstring frames = TextOf(readings, L"frameCount");
    WriteName(file, nameColour);
    strip.Write(TextOf(readings, L"width") + L" x " + TextOf(readings, L"height") + L", " +
                    TextOf(readings, L"pixelType"),
                cell.lines[1], factsColour);
    strip.Write(frames + (frames == L"1" ? L" frame" : L" frames"), cell.lines[2], factsColour);
}

void SheetWriter::ShowFailure(const SourceFile& file)
{
    const SheetLayout::Cell cell = layout.CellAt(column);
    // Part of the picture may be there already.
    strip.Fill(cell.whole, backgroundColour);
    strip.Fill(cell.picture, emptyPlaceColour);
    strip.Write(L"cannot be shown", cell.picture, failureColour);
    WriteName(file, failureColour);
}

void SheetWriter::FinishCell()
{
    ++column;
    if (column == layout.Columns())
        FinishRow();
}

void SheetWriter::Finish()
{
    if (column > 0)
        FinishRow();
    png.Finish();
}

void SheetWriter::WriteName(const SourceFile& file, COLORREF colour)
{
    strip.Write(JoinPath(file.subfolder, FileName(file.name)), layout.CellAt(column).lines[0], colour);
}

void SheetWriter::FinishRow()
{
    png.WriteRows(strip.Height(), strip.Stride(), strip.Rows(strip.Height()));
    strip.Fill({0, 0, layout.Width(), strip.Height()}, backgroundColour);
    column = 0;
}

} // namespace Lumora
