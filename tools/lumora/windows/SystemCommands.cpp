#include "lumora/arguments/Commands.h"
#include "lumora/commands/DoctorCommand.h"
#include "lumora/windows/RegisterCommand.h"

namespace Lumora {

namespace {

using Value = std::wstring_view;

bool TakeDll(CommandLine& line, Value path)
{
    line.dllPath = path;
    return true;
}

bool TakeChoice(CommandLine& line, const wchar_t* property, Value value)
{
    line.choices.emplace_back(property, value);
    return true;
}

constexpr Option dll = {L"--dll", L"PATH",
                        L"the Lumora.dll that is to be registered. Default: the one beside this program",
                        TakeDll};

constexpr Option doctorOptions[] = {
    doctorJson,
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

constexpr CommandDescription commands[] = {
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
        .run = RunDoctor,
    },
    {
        .command = Command::Register,
        .name = L"register",
        .summary = L"Register Lumora with Windows, for pictures, thumbnails and properties",
        .details =
            L"What another program has set for a file name extension is left to that program, and listed.\n"
            L"A choice that is not made stays as the present registration has it.\n",
        .options = registerOptions,
        .run = RunRegister,
    },
    {
        .command = Command::Unregister,
        .name = L"unregister",
        .summary = L"Remove the registration of Lumora",
        .details = L"What another program has set for a file name extension stays.\n",
        .options = unregisterOptions,
        .run = RunUnregister,
    },
};

} // namespace

std::span<const CommandDescription> SystemCommands() noexcept
{
    return commands;
}

} // namespace Lumora
