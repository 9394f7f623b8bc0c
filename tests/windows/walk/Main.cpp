// Runs the test programs, and the steps of docs/windows-checklist.md that need no eyes, and writes one
// report. The zip of the tests starts it.

#include "support/ProgramFolder.h"
#include "support/TestFolders.h"
#include "windows/walk/Checklist.h"
#include "windows/walk/Host.h"
#include "windows/walk/Report.h"
#include "windows/walk/package/Installation.h"
#include "windows/walk/programs/TestPrograms.h"
#include "windows/walk/shell/ShellSteps.h"

#include <cstdio>
#include <exception>
#include <string>

namespace {

constexpr const char* help =
    "Run Lumora's test programs, install and remove its setup package, and write report.txt.\n"
    "\n"
    "Usage: windows_walk [--quick]\n"
    "\n"
    "The report, and the folder of logs, are written to the folder above this program. The\n"
    "packages are there, too. The exit code is 0 if nothing differs, 1 if something does or the\n"
    "report is not complete, and 2 for a usage error.\n"
    "\n"
    "Options:\n"
    "  --quick  run only a part of the test programs\n"
    "  --help   this text\n";

bool Walk(bool isQuick)
{
    const std::filesystem::path folder = ProgramFolder().parent_path();
    const std::filesystem::path logs = folder / "logs";
    std::filesystem::remove_all(logs);
    std::filesystem::create_directories(logs);
    const std::filesystem::path source = TestFolder("source");
    const Host host = ThisHost();
    Report report(folder / "report.txt");
    report.Note("Lumora " LUMORA_VERSION " on " + host.name + (host.isElevated ? ", as administrator" : "") +
                '\n');
    RunTestPrograms(report, host, logs, isQuick);
    WalkThroughInstallation(report, host, {folder, source / "samples", logs});
    AddWhatRemains(report, source / "docs" / "windows-checklist.md");
    report.AddTotal();
    return !report.HasDifferences();
}

/// The child process of the steps with the installed package.
void WalkThroughShell(const std::filesystem::path& part)
{
    const std::filesystem::path source = TestFolder("source");
    Report report(part);
    CheckShell(report, ThisHost(), source / "samples", source / "docs" / "pictures");
}

} // namespace

// The start-up code requires this name.
int wmain(int count, wchar_t** words) // NOLINT(readability-identifier-naming)
{
    const std::wstring word = count > 1 ? words[1] : L"";
    const bool isShell = count == 3 && word == L"--shell";
    if (!isShell && (count > 2 || (!word.empty() && word != L"--quick")))
    {
        std::fputs(help, word == L"--help" ? stdout : stderr);
        return word == L"--help" ? 0 : 2;
    }
    try
    {
        if (!isShell)
            return Walk(word == L"--quick") ? 0 : 1;
        WalkThroughShell(words[2]);
        return 0;
    }
    catch (const std::exception& exception)
    {
        std::fprintf(stderr, "windows_walk: %s\n", exception.what());
        return 1;
    }
}
