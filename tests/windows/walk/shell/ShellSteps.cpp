#include "windows/walk/shell/ShellSteps.h"

#include "windows/clients/TemporaryFolder.h"
#include "windows/gauntlet/FilesBelow.h"

#include <windows.h>

#include <objbase.h>

void CheckShell(Report& report, const Host& host, const std::filesystem::path& samples,
                const std::filesystem::path& pictures)
{
    // Of files in a new folder, the shell cannot have kept thumbnails.
    const TemporaryFolder folder;
    for (const std::filesystem::path& sample : FilesBelow({samples.wstring()}))
        std::filesystem::copy_file(sample, folder.Path() / sample.filename());
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    CheckThumbnails(report, host, folder.Path(), pictures);
    // Before this process loads the DLL for the properties.
    CheckProcesses(report, host);
    CheckProperties(report, host, folder.Path());
    ListVerbs(report, folder.Path() / "fringes.mrc");
    CoUninitialize();
}
