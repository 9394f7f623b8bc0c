#include "lumora/arguments/HelpText.h"

namespace Lumora {

namespace {

constexpr std::wstring_view programHelp = LR"(Lumora shows electron-microscopy files as pictures.

Usage: lumora COMMAND [OPTIONS]

Commands:
  info        tell what files hold: size, frames, pixel type, software
  render      write frames as PNG pictures
  sheet       write one PNG picture that shows many files
  doctor      tell why there is no thumbnail
  register    make Lumora known to Windows
  unregister  take that back

Options:
  --help      this text; after a command, how that command is used
  --version   the version of this program

The exit code is 0 on success, 1 when something failed and 2 for a usage error.
)";

constexpr std::wstring_view infoHelp = LR"(Tells what files hold.

Usage: lumora info [--json] [--verbose] PATH...

A PATH is a file, a pattern like *.mrc, or a folder: then every file below it counts that Lumora reads, or that
has an extension which Lumora registers. Lumora must be registered.

Options:
  --json      write an array with one object for each file; a failed one has the member "error", a property
              that a file does not have is null
  --verbose   tell on standard error what the reader noted about each file
  --          what follows is a PATH, also when it begins with a dash
  --help      this text
)";

constexpr std::wstring_view renderHelp = LR"(Writes frames as PNG pictures.

Usage: lumora render [-o FOLDER] [--frame N|all] [--size PIXELS] [--verbose] PATH...

A PATH is a file, a pattern like *.mrc, or a folder: then every file below it counts that Lumora reads, or that
has an extension which Lumora registers. Lumora must be registered.

The picture of NAME.mrc is NAME.png, or NAME-N.png for a frame other than the first and when all are asked for.
Files from the subfolders of a PATH go to subfolders of the same names. An earlier picture is replaced, a source
never, and no two pictures of one run get the same name. The names written are listed on standard output.

Options:
  -o FOLDER       where the pictures go; made when it is not there. Default: the current folder
  --frame N       the frame with this number, counted from 0; "all" for each of them. Default: 0
  --size PIXELS   scale down so that the longer side has this many pixels; smaller pictures stay as they are
  --verbose       tell on standard error what the reader noted about each file
  --              what follows is a PATH, also when it begins with a dash
  --help          this text
)";

constexpr std::wstring_view sheetHelp =
    LR"(Writes a contact sheet: one PNG picture that shows the first frame of many files.

Usage: lumora sheet [-o FILE] [--size PIXELS] [--columns N] [--verbose] PATH...

A PATH is a file, a pattern like *.mrc, or a folder: then every file below it counts that Lumora reads, or that
has an extension which Lumora registers. Lumora must be registered.

Below each picture stand the file's name, with the subfolder of the PATH in which it was found, its size in
pixels, its pixel type and the number of its frames. A file that cannot be shown has a place that says so; why,
standard error tells. An earlier sheet is replaced, a source never. The sheet's name is written to standard
output.

Options:
  -o FILE         the sheet; its folder is made when it is not there. Default: sheet.png in the current folder
  --size PIXELS   scale pictures down so that the longer side has this many pixels, 32 to 1024; smaller
                  pictures stay as they are. Default: 200
  --columns N     at most this many pictures side by side, 1 to 32. Default: as many as a screen of 1920 pixels
                  shows
  --verbose       tell on standard error what the reader noted about each file
  --              what follows is a PATH, also when it begins with a dash
  --help          this text
)";

constexpr std::wstring_view doctorHelp = LR"(Tells why there is no thumbnail, and changes nothing.

Usage: lumora doctor [--json] [--dll PATH] [FILE...]

A FILE is a file, a pattern like *.mrc, or a folder: then every file below it counts that has an extension
which Lumora registers.

It looks at what Windows is told of Lumora and at the DLL that is named there, starts Lumora's classes, looks at
Explorer's settings, and opens each FILE as Explorer does. Each line is "ok", "note" or "problem"; the sentence
at the end says what is wrong, the most fundamental thing first, and what to do. The exit code is 0 when all is
well and 1 otherwise.

- A registration for all users is enough. One for yourself alone is well too, but Windows takes no properties
  from it. Where both are there and differ, yours hides the other, which is a problem.
- A value that another program has set is a note, and a problem when it is about the extension of a FILE.
- Run it without administrator rights, as Explorer does: with them, Windows does not look at your registration.

Options:
  --json      write one object: "allIsWell", "advice", "checks" and "files", each of these with its own "checks"
  --dll PATH  the Lumora.dll that should be registered. Default: the one beside this program
  --          what follows is a FILE, also when it begins with a dash
  --help      this text
)";

constexpr std::wstring_view registerHelp =
    LR"(Makes Lumora known to Windows: to its imaging component as a decoder, to its shell for thumbnails and properties.

Usage: lumora register [--user] [--dll PATH] [--without EXTENSIONS] [--check]

What other programs have set for a file name extension is left to them and listed.

Options:
  --user      for yourself alone, which needs no administrator rights. Windows takes the properties and the
              kinds of files from the machine alone, so files get thumbnails but no properties
  --dll PATH  the Lumora.dll to register. Default: the one beside this program
  --without EXTENSIONS
              leave these file name extensions alone, for example ".h5,.map"; none for none of them. Without this
              option the choice of the present registration holds. Files open by their content as before
  --check     change nothing, and tell what of the registration is missing or outdated
  --help      this text
)";

constexpr std::wstring_view unregisterHelp = LR"(Takes a registration of Lumora back.

Usage: lumora unregister [--user]

What other programs have set for a file name extension stays.

Options:
  --user      take back what "lumora register --user" has done
  --help      this text
)";

struct CommandHelp
{
    std::wstring_view invocation;
    std::wstring_view text;
};

constexpr CommandHelp HelpOf(Command command) noexcept
{
    switch (command)
    {
    case Command::Info:
        return {L"lumora info --help", infoHelp};
    case Command::Render:
        return {L"lumora render --help", renderHelp};
    case Command::Sheet:
        return {L"lumora sheet --help", sheetHelp};
    case Command::Doctor:
        return {L"lumora doctor --help", doctorHelp};
    case Command::Register:
        return {L"lumora register --help", registerHelp};
    case Command::Unregister:
        return {L"lumora unregister --help", unregisterHelp};
    case Command::None:
        break;
    }
    return {L"lumora --help", programHelp};
}

} // namespace

std::wstring_view HelpText(Command command) noexcept
{
    return HelpOf(command).text;
}

std::wstring_view HelpInvocation(Command command) noexcept
{
    return HelpOf(command).invocation;
}

} // namespace Lumora
