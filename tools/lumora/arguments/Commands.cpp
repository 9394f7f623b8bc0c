#include "lumora/arguments/Commands.h"

#include "lumora/arguments/Numbers.h"
#include "lumora/commands/InfoCommand.h"
#include "lumora/commands/MergeCommand.h"
#include "lumora/commands/RenderCommand.h"
#include "lumora/commands/SheetCommand.h"
#include "lumora/sheet/SheetLayout.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace Lumora {

namespace {

using Value = std::wstring_view;

constexpr uint32_t mostJobs = 64;
constexpr uint32_t noLimit = std::numeric_limits<uint32_t>::max();

/// Writes a decimal number from `lowest` to `highest` into the target. Returns false for any other text.
bool TakeNumber(std::optional<uint32_t>& target, Value text, uint32_t lowest, uint32_t highest)
{
    target = ParseNumber(text, lowest, highest);
    return target.has_value();
}

bool TakeText(std::wstring& target, Value text)
{
    target = text;
    return true;
}

bool TakeJobs(CommandLine& line, Value text)
{
    const std::optional<uint32_t> jobs = ParseNumber(text, 1, mostJobs);
    line.jobs = jobs.value_or(1);
    return jobs.has_value();
}

bool TakeOutput(CommandLine& line, Value value)
{
    line.output = value;
    return true;
}

bool TakeColumns(CommandLine& line, Value value)
{
    return TakeNumber(line.columns, value, 1, SheetLayout::mostColumns);
}

bool TakeSkipExisting(CommandLine& line, Value)
{
    return line.skipsExisting = true;
}

constexpr Option verbose = {L"--verbose", L"",
                            L"print on standard error what the reader noted about each file",
                            [](CommandLine& line, Value) { return line.isVerbose = true; }};

constexpr Option programOptions[] = {
    {L"--version", L"", L"the version of this program",
     [](CommandLine& line, Value) { return line.wantsVersion = true; }},
};

constexpr Option filesFrom = {
    L"--files-from", L"LIST",
    L"take the names in this file, too, one on a line; - is the standard input. The picture of "
    L"sub/x.mrc goes to sub in the target folder",
    [](CommandLine& line, Value value) { return TakeText(line.namesFrom, value); }};

constexpr Option nulSeparated = {L"-0", L"", L"the names of the list end with NUL characters",
                                 [](CommandLine& line, Value) {
                                     line.separator = NameList::Separator::Nul;
                                     return true;
                                 }};

constexpr Option jobs = {
    L"--jobs", L"N",
    L"so many processes work on the files, 1 to 64; the results are the same, and in the "
    L"same order. Default: 1, this process",
    TakeJobs};

constexpr Option shard = {
    L"--shard", L"K/N",
    L"take only every N-th of the files, beginning with the K-th: 3/8. N is 500 at most. So several machines "
    L"can share the files",
    [](CommandLine& line, Value value) {
        line.shard = Shard::Parse(value);
        return line.shard.has_value();
    }};

constexpr Option jsonLines = {
    L"--jsonl", L"",
    L"write JSON Lines: one object for each file, with all that is known, as soon as it is done",
    [](CommandLine& line, Value) { return line.wantsJsonLines = true; }};

constexpr Option infoOptions[] = {
    {L"--json", L"",
     L"write an array with one object for each file. A file that cannot be read has the member \"error\"; a "
     L"property that a file does not have is null",
     [](CommandLine& line, Value) { return line.wantsJson = true; }},
    jsonLines,
    filesFrom,
    nulSeparated,
    jobs,
    shard,
    verbose,
};

constexpr Option renderOptions[] = {
    {L"-o", L"FOLDER",
     L"the folder for the pictures; it is made if it does not exist. Default: the current folder",
     TakeOutput},
    {L"--frame", L"FRAMES",
     L"frames by their numbers, counted from 0, or all: 5, 0-9,20, all, all/10 (every tenth). Default: 0; "
     L"all "
     L"for a montage",
     [](CommandLine& line, Value value) {
         line.frames = FrameSelection::Parse(value);
         return line.frames.has_value();
     }},
    {L"--size", L"PIXELS",
     L"scale down so that the longer side has this many pixels; smaller pictures stay as they are. Default "
     L"for "
     L"the frames of a montage: 256",
     [](CommandLine& line, Value value) { return TakeNumber(line.longerSide, value, 1, noLimit); }},
    {L"--montage", L"", L"show the frames of each file side by side in one picture",
     [](CommandLine& line, Value) { return line.isMontage = true; }},
    {L"--columns", L"N",
     L"at most this many frames of a montage side by side, 1 to 32. Default: about as many as there are rows",
     TakeColumns},
    {L"--jpeg", L"", L"write JPEG pictures instead of PNG",
     [](CommandLine& line, Value) { return line.isJpeg = true; }},
    {L"--quality", L"N", L"the quality of JPEG pictures, 1 to 100. Default: 90",
     [](CommandLine& line, Value value) { return TakeNumber(line.quality, value, 1, 100); }},
    {L"--skip-existing", L"", L"leave pictures as they are that are not older than their files",
     TakeSkipExisting},
    jsonLines,
    filesFrom,
    nulSeparated,
    jobs,
    shard,
    verbose,
};

constexpr Option sheetOptions[] = {
    {L"-o", L"PATH",
     L"the sheet, or the folder of the page; it is made with its folder if it does not exist. Default: "
     L"sheet.png, or sheet, in the current folder",
     TakeOutput},
    // A smaller picture shows nothing; a row of larger ones takes too much memory.
    {L"--size", L"PIXELS",
     L"scale pictures down so that the longer side has this many pixels, 32 to 1024; smaller pictures stay "
     L"as they are. Default: 200",
     [](CommandLine& line, Value value) { return TakeNumber(line.longerSide, value, 32, 1024); }},
    {L"--columns", L"N",
     L"at most this many pictures side by side, 1 to 32. Default: as many as a screen of 1920 pixels shows",
     TakeColumns},
    {L"--rows", L"N",
     L"begin another sheet after so many rows. Default: when the sheet is as large as programs can show",
     [](CommandLine& line, Value value) { return TakeNumber(line.rows, value, 1, noLimit); }},
    {L"--html", L"",
     L"write a page for a browser instead, in a folder of its own with all pictures: it can be searched and "
     L"sorted",
     [](CommandLine& line, Value) { return line.isPage = true; }},
    {L"--skip-existing", L"", L"of a page: leave pictures as they are that are not older than their files",
     TakeSkipExisting},
    {L"--only-readable", L"", L"leave out files that cannot be shown",
     [](CommandLine& line, Value) { return line.onlyReadable = true; }},
    filesFrom,
    nulSeparated,
    jobs,
    shard,
    verbose,
};

constexpr Option mergeOptions[] = {
    {L"-o", L"FILE",
     L"the whole. Default: merged.jsonl in the current folder, or index.html beside the pages of the shards",
     TakeOutput},
};

const wchar_t* ListConflict(const CommandLine& line)
{
    const bool isNulAlone = line.namesFrom.empty() && line.separator == NameList::Separator::Nul;
    return isNulAlone ? L"-0 is for the names of --files-from" : nullptr;
}

const wchar_t* InfoConflict(const CommandLine& line)
{
    if (line.wantsJson && line.wantsJsonLines)
        return L"--json and --jsonl exclude each other";
    return ListConflict(line);
}

const wchar_t* RenderConflict(const CommandLine& line)
{
    if (line.quality && !line.isJpeg)
        return L"--quality is for --jpeg";
    if (line.columns && !line.isMontage)
        return L"--columns is for --montage";
    return ListConflict(line);
}

const wchar_t* SheetConflict(const CommandLine& line)
{
    if (line.isPage && (line.columns || line.rows))
        return L"a page has no fixed --columns and --rows";
    if (line.skipsExisting && !line.isPage)
        return L"--skip-existing is for --html";
    return ListConflict(line);
}

constexpr std::wstring_view everyReadableFile =
    L"every file below it that Lumora reads, whatever its name, and every file with an extension that Lumora "
    L"knows.";

constexpr CommandDescription program = {
    .summary = L"Show electron-microscopy files as pictures",
    .details = L"The exit code is 0 on success, 1 when something failed and 2 for a usage error.\n",
    .options = programOptions,
};

constexpr CommandDescription commands[] = {
    {
        .command = Command::Info,
        .needsPath = true,
        .name = L"info",
        .summary = L"Print what files hold: size, frames, pixel type, software",
        .pathName = L"PATH",
        .filesOfFolder = everyReadableFile,
        .options = infoOptions,
        .run = RunInfo,
        .conflict = InfoConflict,
    },
    {
        .command = Command::Render,
        .needsPath = true,
        .name = L"render",
        .summary = L"Write frames as PNG or JPEG pictures",
        .pathName = L"PATH",
        .filesOfFolder = everyReadableFile,
        .details =
            L"The picture of NAME.mrc is NAME.png. It is NAME-N.png for a single frame other than the first, "
            L"and for every frame when there may be several. Frames that a file does not have are left out; "
            L"one of them must be there. Files from the subfolders of a PATH go to subfolders of the same "
            L"names.\n"
            L"A montage is NAME-montage.png.\n"
            L"A picture of that name and format is replaced, a file of another kind never, and no two "
            L"pictures "
            L"of one run get the same name. The names of the pictures are printed.\n"
            L"With --skip-existing, a run that was interrupted goes on where it was. The times of the files "
            L"count, and not with which options a picture was made.\n"
            L"With --shard, the pictures have the same names as without.\n",
        .options = renderOptions,
        .run = RunRender,
        .conflict = RenderConflict,
    },
    {
        .command = Command::Sheet,
        .needsPath = true,
        .name = L"sheet",
        .summary = L"Show the first frames of many files on one PNG picture, or on a page",
        .pathName = L"PATH",
        .filesOfFolder = everyReadableFile,
        .details =
            L"Below each picture are the file's name, with its subfolder of the PATH, its size in pixels, "
            L"its pixel type and its number of frames. A file that cannot be shown has a sign and the reason "
            L"in its place.\n"
            L"When there is more than one sheet, a number is added to each name: sheet-1.png. An earlier "
            L"sheet is replaced, a file of another kind never. The names of the sheets, or of the page, are "
            L"printed.\n"
            L"With --shard 3/8, the name of the sheet is sheet-3-of-8.png, and that of the page "
            L"index-3-of-8.html. The pages of all shards can be in one folder, where merge joins them.\n",
        .options = sheetOptions,
        .run = RunSheet,
        .conflict = SheetConflict,
    },
    {
        .command = Command::Merge,
        .needsPath = true,
        .name = L"merge",
        .summary = L"Join what the shards of a run have written",
        .pathName = L"SHARD",
        .details =
            L"A SHARD is what one run with --shard K/N has written: the JSON Lines of info or render, or the "
            L"page of sheet --html. It may be a pattern such as info-*.jsonl.\n"
            L"All N shards must be there, complete, and of one list of files; their order does not matter. "
            L"What "
            L"they have written then becomes what one run without --shard would have written, line by line. "
            L"The merged page stands in the folder of the shards' pages, whose pictures it shows.\n",
        .options = mergeOptions,
        .run = RunMerge,
    },
};

} // namespace

std::span<const CommandDescription> AllCommands()
{
    static const std::vector<CommandDescription> all = [] {
        std::vector<CommandDescription> list(std::begin(commands), std::end(commands));
        const std::span<const CommandDescription> more = SystemCommands();
        list.insert(list.end(), more.begin(), more.end());
        return list;
    }();
    return all;
}

const CommandDescription& DescriptionOf(Command command)
{
    const std::span<const CommandDescription> all = AllCommands();
    const auto found = std::ranges::find(all, command, &CommandDescription::command);
    return found != all.end() ? *found : program;
}

} // namespace Lumora
