#include "lumora/commands/SheetCommand.h"

#include "lumora/batch/Batch.h"
#include "lumora/console/Failure.h"
#include "lumora/console/Interruption.h"
#include "lumora/files/FileSystem.h"
#include "lumora/files/OutputNames.h"
#include "lumora/files/Paths.h"
#include "lumora/pictures/Imaging.h"
#include "lumora/pictures/UnfinishedFile.h"
#include "lumora/sheet/GalleryWriter.h"
#include "lumora/sheet/SheetWriter.h"

#include <algorithm>

namespace Lumora {

namespace {

constexpr uint32_t usualPictureSide = 200;

/// Shards may write to one folder.
std::wstring NameIn(const std::optional<Shard>& shard, const std::wstring& name)
{
    if (!shard)
        return name;
    return WithSuffix(name, L'-' + std::to_wstring(shard->number) + L"-of-" + std::to_wstring(shard->count));
}

/// Whether the sheet shows the file, or says why it does not.
bool HasPlace(const CommandLine& line, const SourceFile& file, const FileReport& report)
{
    return !file.failure && !(report.failure && line.onlyReadable);
}

int WriteSheets(const CommandLine& line, Console& console)
{
    const std::wstring name = NameIn(line.shard, line.output.value_or(L"sheet.png"));
    const uint32_t side = line.longerSide.value_or(usualPictureSide);
    UnfinishedFile::RequireFreePlace(OpenablePath(name), PictureFormat().Signature());
    if (const std::wstring_view folder = ParentFolder(name); !folder.empty())
        MakeFolder(folder);
    Imaging imaging;
    imaging.RequireDecoder();
    SheetWriter sheets(imaging, name, side, line.columns, line.rows);
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
                                   },
                                   size_t{side} * side * PixelBlock::bytesPerPixel});
    const std::vector<std::wstring> names = sheets.Finish();
    if (names.empty() && !line.shard)
        throw Failure{noFilesForSheet};
    for (const std::wstring& sheet : names)
        console.Print(sheet + L'\n');
    return exitCode;
}

/// The path of a picture from the folder of the page, with slashes.
std::wstring PathOnPage(const std::wstring& folder, const std::wstring& picture)
{
    std::wstring path = picture.substr(JoinPath(folder, L"x").size() - 1);
    std::ranges::replace(path, pathSeparators.front(), L'/');
    return path;
}

GalleryEntry EntryOf(const std::wstring& folder, const SourceFile& file, const FileReport& report)
{
    GalleryEntry entry;
    entry.name = JoinPath(file.subfolder, FileName(file.name));
    entry.source = file.path;
    if (report.failure)
    {
        entry.failure = *report.failure;
        return entry;
    }
    const PictureReport& picture = report.pictures.front();
    entry.picture = PathOnPage(folder, picture.name);
    entry.pictureWidth = picture.width;
    entry.pictureHeight = picture.height;
    const FileProperties& properties = *report.properties;
    entry.width = properties.NumberOf(MetadataProperty::Width);
    entry.height = properties.NumberOf(MetadataProperty::Height);
    entry.frames = properties.NumberOf(MetadataProperty::FrameCount);
    entry.pixelType = properties.TextOf(MetadataProperty::PixelFormat);
    entry.software = properties.TextOf(MetadataProperty::Software);
    entry.details = properties.TextOf(MetadataProperty::FormatDetails);
    return entry;
}

/// What the page is called in the browser: what it shows.
std::wstring TitleOf(const CommandLine& line)
{
    if (line.paths.empty())
        return line.namesFrom == L"-" ? L"Contact sheet" : line.namesFrom;
    return line.paths.front() + (line.paths.size() > 1 ? L" \u2026" : L"");
}

int WritePage(const CommandLine& line, Console& console)
{
    const std::wstring folder = line.output.value_or(L"sheet");
    const std::wstring name = JoinPath(folder, NameIn(line.shard, L"index.html"));
    const uint32_t side = line.longerSide.value_or(usualPictureSide);
    Imaging().RequireDecoder();
    GalleryWriter page(OpenablePath(name), TitleOf(line), side);
    PagePictureNames names(JoinPath(folder, L"pictures"));
    size_t entries = 0;
    const int exitCode = RunBatch(line, console,
                                  {[&](const SourceFile& file) {
                                       FileTask task;
                                       task.path = file.path;
                                       task.wantsProperties = true;
                                       task.pictures.emplace();
                                       task.pictures->longerSide = side;
                                       task.pictures->skipsExisting = line.skipsExisting;
                                       names.Claim(file, *task.pictures);
                                       return task;
                                   },
                                   [&](const SourceFile& file, const FileReport& report) {
                                       if (!HasPlace(line, file, report))
                                       {
                                           if (line.shard)
                                               page.LeaveOut();
                                           return;
                                       }
                                       page.Add(EntryOf(folder, file, report));
                                       ++entries;
                                   },
                                   0, [&page](const ShardMark& mark) { page.Finish(mark.Text()); }});
    // A shard may be without files, and its mark has completed the page.
    if (!line.shard)
    {
        if (entries == 0)
            throw Failure{noFilesForSheet};
        page.Finish();
    }
    console.Print(name + L'\n');
    return exitCode;
}

} // namespace

int RunSheet(const CommandLine& line, Console& console)
{
    const Interruption interruption;
    return line.isPage ? WritePage(line, console) : WriteSheets(line, console);
}

} // namespace Lumora
