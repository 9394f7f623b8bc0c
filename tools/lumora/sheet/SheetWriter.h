#pragma once

#include "lumora/files/FileList.h"
#include "lumora/pictures/PngWriter.h"
#include "lumora/sheet/Canvas.h"
#include "lumora/sheet/SheetLayout.h"

#include <cstdint>
#include <string>

namespace Lumora {

/// Writes a contact sheet, cell after cell. Only the cells of one row are in memory at a time. Whatever fails
/// throws a Failure.
class SheetWriter
{
public:
    SheetWriter(IWICImagingFactory& factory, const SheetLayout& layout, uint32_t pictureSide,
                const std::wstring& path);

    /// Fills the cell with the file's first frame and what is known of the file.
    void Show(const SourceFile& file);

    /// Says in the cell that the file cannot be shown.
    void ShowFailure(const SourceFile& file);

    /// Goes on to the next cell.
    void FinishCell();

    /// Completes the sheet after the last cell.
    void Finish();

private:
    void WriteName(const SourceFile& file, COLORREF colour);
    void FinishRow();

    IWICImagingFactory& factory;
    const SheetLayout layout;
    const uint32_t pictureSide;
    PngWriter png;
    /// The row that is being filled.
    Canvas strip;
    uint32_t column = 0;
};

} // namespace Lumora
