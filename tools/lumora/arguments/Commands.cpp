#include "lumora/arguments/Commands.h"

#include <algorithm>
#include <limits>

namespace Lumora {

namespace {

using Value = std::wstring_view;

constexpr uint32_t noLimit = std::numeric_limits<uint32_t>::max();

/// Writes a decimal number from `lowest` to `highest` into the target. Returns false for any other text.
bool TakeNumber(std::optional<uint32_t>& target, Value text, uint32_t lowest, uint32_t highest)
{
    uint64_t number = 0;
    for (const wchar_t digit : text)
    {
        if (digit < L'0' || digit > L'9' || number > highest)
            return false;
        number = number * 10 + static_cast<uint64_t>(digit - L'0');
    }
    if (number < lowest || number > highest)
        return false;
    target = static_cast<uint32_t>(number);
    return true;
}

bool TakeText(std::wstring& target, Value text)
{
    target = text;
    return true;
}

bool TakeChoice(CommandLine& line, const wchar_t* property, Value value)
{
    line.choices.emplace_back(property, value);
    return true;
}

constexpr Option verbose = {L"--verbose", L"",
                            L"print on standard error what the reader noted about each file",
                            [](CommandLine& line, Value) { return line.isVerbose = true; }};

constexpr Option dll = {L"--dll", L"PATH",
                        L"the Lumora.dll that is to be registered. Default: the one beside this program",
                        [](CommandLine& line, Value value) { return TakeText(line.dllPath, value); }};

constexpr Option programOptions[] = {
    {L"--version", L"", L"the version of this program",
     [](CommandLine& line, Value) { return line.wantsVersion = true; }},
};

constexpr Option infoOptions[] = {
    {L"--json", L"",
     L"write an array with one object for each file. A file that cannot be read has the member \"error\"; a "
     L"property that a file does not have is null",
     [](CommandLine& line, Value) { return line.wantsJson = true; }},
    verbose,
};

constexpr Option renderOptions[] = {
    {L"-o", L"FOLDER",
     L"the folder for the pictures; it is made if it does not exist. Default: the current folder",
     [](CommandLine& line, Value value) { return TakeText(line.outputFolder, value); }},
    {L"--frame", L"N|all", L"the frame with this number, counted from 0, or all frames. Default: 0",
     [](CommandLine& line, Value value) {
         if (value != L"all")
             return TakeNumber(line.frame, value, 0, noLimit);
         line.frame.reset();
         return true;
     }},
    {L"--size", L"PIXELS",
     L"scale down so that the longer side has this many pixels; smaller pictures stay as they are",
     [](CommandLine& line, Value value) { return TakeNumber(line.longerSide, value, 1, noLimit); }},
    verbose,
};

constexpr Option sheetOptions[] = {
    {L"-o", L"FILE",
     L"the sheet; its folder is made if it does not exist. Default: sheet.png in the current folder",
     [](CommandLine& line, Value value) { return TakeText(line.sheetName, value); }},
    // A smaller picture shows nothing; a row of larger ones takes too much memory.
    {L"--size", L"PIXELS",
     L"scale pictures down so that the longer side has this many pixels, 32 to 1024; smaller pictures stay "
     L"as "
     L"they are. Default: 200",
     [](CommandLine& line, Value value) { return TakeNumber(line.longerSide, value, 32, 1024); }},
    {L"--columns", L"N",
     L"at most this many pictures side by side, 1 to 32. Default: as many as a screen of 1920 pixels shows",
     [](CommandLine& line, Value value) { return TakeNumber(line.columns, value, 1, 32); }},
    verbose,
};

constexpr Option doctorOptions[] = {
    {L"--json", L"",
     L"write one object: \"allIsWell\", \"advice\", \"checks\" and \"files\"; each file has its own "
     L"\"checks\"",
     [](CommandLine& line, Value) { return line.wantsJson = true; }},
    dll,
};

constexpr Option user = {
    L"--user", L"",
    L"for yourself only, without administrator rights. Windows takes properties and kinds of "
    L"files from the registration for all users only: files get thumbnails, but no properties",
    [](CommandLine& line, Value) {
        line.scope = Scope::User;
        return true;
    }};

constexpr Option registerOptions[] = {
    user,
    dll,
    {L"--without", L"EXTENSIONS",
     L"do not register these file name extensions, for example \".h5,.map\"; \"none\" registers all. A "
     L"program that asks Windows by content still opens such files",
     [](CommandLine& line, Value value) { return TakeChoice(line, L"WITHOUT", value); }},
    {L"--with", L"EXTENSIONS",
     L"show properties of these files, too: .h5, .hdf5. They may hold any data, and Windows reads the whole "
     L"of each such file for its properties, so the default is \"none\"",
     [](CommandLine& line, Value value) { return TakeChoice(line, L"WITH", value); }},
    {L"--no-pictures", L"",
     L"do not tell Windows that files are pictures: searches for pictures do not find them, and programs "
     L"that "
     L"change pictures leave them alone",
     [](CommandLine& line, Value) { return TakeChoice(line, L"PICTURES", L"0"); }},
    {L"--pictures", L"", L"the opposite, and the default",
     [](CommandLine& line, Value) { return TakeChoice(line, L"PICTURES", L"1"); }},
    {L"--photo-viewer", L"", L"let people choose Windows Photo Viewer for a double click",
     [](CommandLine& line, Value) { return TakeChoice(line, L"PHOTOVIEWER", L"1"); }},
    {L"--no-photo-viewer", L"", L"the opposite, and the default",
     [](CommandLine& line, Value) { return TakeChoice(line, L"PHOTOVIEWER", L"0"); }},
    {L"--check", L"", L"change nothing; print what is missing from the registration, or outdated",
     [](CommandLine& line, Value) { return line.onlyCheck = true; }},
};

constexpr Option unregisterOptions[] = {
    {L"--user", L"", L"remove what \"lumora register --user\" has registered", user.take},
};

constexpr std::wstring_view everyReadableFile =
    L"every file below it that Lumora reads, whatever its name, and every file with an extension that Lumora "
    L"registers. Lumora must be registered.";

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
    },
    {
        .command = Command::Render,
        .needsPath = true,
        .name = L"render",
        .summary = L"Write frames as PNG pictures",
        .pathName = L"PATH",
        .filesOfFolder = everyReadableFile,
        .details =
            L"The picture of NAME.mrc is NAME.png. It is NAME-N.png for a frame other than the first, and "
            L"for every frame when all are written. Files from the subfolders of a PATH go to subfolders "
            L"of the same names.\n"
            L"An earlier picture is replaced, a source never, and no two pictures of one run get the same "
            L"name. The names of the pictures are printed.\n",
        .options = renderOptions,
    },
    {
        .command = Command::Sheet,
        .needsPath = true,
        .name = L"sheet",
        .summary = L"Write one PNG picture that shows the first frame of many files",
        .pathName = L"PATH",
        .filesOfFolder = everyReadableFile,
        .details =
            L"Below each picture are the file's name, with its subfolder of the PATH, its size in pixels, "
            L"its pixel type and its number of frames. A file that cannot be shown has a sign in its "
            L"place; the reason is printed on standard error.\n"
            L"An earlier sheet is replaced, a source never. The name of the sheet is printed.\n",
        .options = sheetOptions,
    },
    {
        .command = Command::Doctor,
        .name = L"doctor",
        .summary = L"Find out why there is no thumbnail, and change nothing",
        .pathName = L"FILE",
        .filesOfFolder = L"every file below it with an extension that Lumora registers.",
        .details =
            L"Doctor looks at the registration of Lumora and at the DLL that it names, starts Lumora's "
            L"classes, looks at Explorer's settings, and opens each FILE as Explorer does. Each line is "
            L"\"ok\", \"note\" or \"problem\". The sentence at the end says what is wrong, the most "
            L"fundamental problem first, and what to do. The exit code is 0 when all is well and 1 "
            L"otherwise.\n"
            L"A registration for all users is enough. One for yourself only also works, but Windows takes "
            L"no properties from it. If both exist and differ, yours hides the other; that is a problem.\n"
            L"A value that another program has set is a note. It is a problem if it concerns the extension "
            L"of a FILE.\n"
            L"Run doctor without administrator rights, as Explorer runs. With them, Windows ignores a "
            L"registration for yourself only.\n",
        .options = doctorOptions,
    },
    {
        .command = Command::Register,
        .name = L"register",
        .summary = L"Register Lumora with Windows, for pictures, thumbnails and properties",
        .details =
            L"What another program has set for a file name extension is left to that program, and listed.\n"
            L"A choice that is not made stays as the present registration has it.\n",
        .options = registerOptions,
    },
    {
        .command = Command::Unregister,
        .name = L"unregister",
        .summary = L"Remove the registration of Lumora",
        .details = L"What another program has set for a file name extension stays.\n",
        .options = unregisterOptions,
    },
};

} // namespace

std::span<const CommandDescription> AllCommands() noexcept
{
    return commands;
}

const CommandDescription& DescriptionOf(Command command) noexcept
{
    const auto* const found = std::ranges::find(commands, command, &CommandDescription::command);
    return found != std::end(commands) ? *found : program;
}

} // namespace Lumora
