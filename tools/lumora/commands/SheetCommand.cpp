#include "lumora/commands/SheetCommand.h"

#include "lumora/console/Failure.h"
#include "lumora/files/FileLoop.h"
#include "lumora/files/FileSystem.h"
#include "lumora/files/Paths.h"
#include "lumora/pictures/ImagingFactory.h"
#include "lumora/sheet/SheetLayout.h"
#include "lumora/sheet/SheetWriter.h"

#include <windows.h>

namespace Lumora {

namespace {

constexpr uint32_t usualPictureSide = 200;

/// Checks before the work that the sheet can have this name, and that it replaces no source.
void PreparePlace(const std::wstring& name, const std::wstring& path, const FileList& list)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        throw Failure{L"this is a folder; -o names the file for the sheet"};
    for (const SourceFile& source : list.files)
    {
        if (AreSameName(path, source.path) || IsSameFile(path, source.path))
            throw Failure{L"the sheet would replace a source; -o names another file"};
    }
    if (const std::wstring_view folder = ParentFolder(name); !folder.empty())
        MakeFolder(folder);
}

int WriteSheet(IWICImagingFactory& factory, const FileList& list, const CommandLine& line, Console& console)
{
    const uint32_t pictureSide = line.longerSide.value_or(usualPictureSide);
    const SheetLayout layout(list.files.size(), pictureSide, line.columns);
    const std::wstring path = OpenablePath(line.sheetName);
    PreparePlace(line.sheetName, path, list);

    SheetWriter sheet(factory, layout, pictureSide, path);
    const int exitCode = ForEachFile(
        list, line, console, [&sheet](const SourceFile& file) { sheet.Show(file); },
        [&sheet](const SourceFile& file, const std::optional<std::wstring>& failure) {
            if (failure)
                sheet.ShowFailure(file);
            sheet.FinishCell();
        });
    sheet.Finish();
    return exitCode;
}

} // namespace

int RunSheet(const CommandLine& line, Console& console)
{
    const ComPtr<IWICImagingFactory> factory = MakeImagingFactory();
    const FileList list = FindFiles(line.paths, FolderRule::ReadableToo, console);
    if (list.files.empty())
        throw Failure{L"there are no files for a sheet"};
    int exitCode = 0;
    try
    {
        exitCode = WriteSheet(*factory.Get(), list, line, console);
    }
    catch (const Failure& failure)
    {
        throw Failure{line.sheetName + L": " + failure.text};
    }
    console.Print(line.sheetName + L'\n');
    return exitCode;
}

} // namespace Lumora
