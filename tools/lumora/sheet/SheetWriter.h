#pragma once

#include "lumora/batch/FileReport.h"
#include "lumora/files/FileSource.h"
#include "lumora/pictures/Imaging.h"
#include "lumora/sheet/Canvas.h"
#include "lumora/sheet/RowStore.h"
#include "lumora/sheet/SheetLayout.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Lumora {

/// Writes contact sheets, cell after cell. Only the cells of one row are in memory at a time. Whatever fails
/// throws a Failure.
class SheetWriter
{
public:
    /// A sheet of that name, whose pictures have this side. When a sheet has this number of rows, or as many
    /// as programs can show, the next one begins: then a number is added to each name.
    SheetWriter(Imaging& imaging, std::wstring name, uint32_t pictureSide, std::optional<uint32_t> columns,
                std::optional<uint32_t> rows);

    /// Fills the next cell with the file's first frame and what is known of the file, or with the reason why
    /// it cannot be shown.
    void Add(const SourceFile& file, const FileReport& report);

    /// Completes the last sheet. Returns the names of all; none if there is no cell.
    [[nodiscard]] std::vector<std::wstring> Finish();

private:
    void ShowPicture(const FileReport& report, const SheetLayout::Cell& cell);
    void ShowFailure(const FileReport& report, const SheetLayout::Cell& cell);
    void FinishRow();
    void FinishSheet(bool isLast);
    void WriteSheet(uint32_t width);

    Imaging& imaging;
    const std::wstring name;
    const SheetLayout layout;
    const uint32_t rowsOfSheet;
    /// The row that is being filled.
    Canvas strip;
    /// The rows that are complete.
    RowStore store;
    uint32_t row = 0;
    uint32_t column = 0;
    std::vector<std::wstring> names;
};

} // namespace Lumora
