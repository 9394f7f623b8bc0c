#include "lumora/commands/SheetCommand.h"

#include "lumora/batch/Batch.h"
#include "lumora/console/Failure.h"
#include "lumora/files/FileSystem.h"
#include "lumora/files/OutputNames.h"
#include "lumora/files/Paths.h"
#include "lumora/pictures/ImagingFactory.h"
#include "lumora/pictures/UnfinishedFile.h"
#include "lumora/sheet/SheetWriter.h"

#include <algorithm>

namespace Lumora {

namespace {

constexpr uint32_t usualPictureSide = 200;
constexpr const wchar_t* noFiles = L"there are no files for a sheet";

/// Whether the sheet shows the file, or says why it does not.
bool HasPlace(const CommandLine& line, const SourceFile& file, const FileReport& report)
{
    return !file.failure && !(report.failure && line.onlyReadable);
}

int WriteSheets(const CommandLine& line, Console& console)
{
    const std::wstring name = line.output.value_or(L"sheet.png");
    const uint32_t side = line.longerSide.value_or(usualPictureSide);
    UnfinishedFile::RequireFreePlace(OpenablePath(name), PictureFormat().Signature());
    if (const std::wstring_view folder = ParentFolder(name); !folder.empty())
        MakeFolder(folder);
    SheetWriter sheets(MakeImagingFactory(), name, side, line.columns, line.rows);
    const int exitCode = RunBatch(line, console,
                                  {[side](const SourceFile& file) {
                                       FileTask task;
                                       task.path = file.path;
                                       task.wantsProperties = true;
                                       task.thumbnailSide = side;
                                       return task;
                                   },
                                   [&](const SourceFile& file, const FileReport& report) {
                                       if (HasPlace(line, file, report))
                                           sheets.Add(file, report);
                                   }});
    const std::vector<std::wstring> names = sheets.Finish();
    if (names.empty())
        throw Failure{noFiles};
    for (const std::wstring& sheet : names)
        console.Print(sheet + L'\n');
    return exitCode;
}

} // namespace

int RunSheet(const CommandLine& line, Console& console)
{
    return WriteSheets(line, console);
}

} // namespace Lumora
