#include "windows/walk/package/Installation.h"

#include "support/ProgramFolder.h"
#include "windows/walk/package/InstalledProduct.h"
#include "windows/walk/package/InstallerSteps.h"
#include "windows/walk/package/Signature.h"

#include <windows.h>

#include <exception>

namespace {

std::wstring InstalledTool()
{
    return (InstallationFolder() / L"lumora.exe").wstring();
}

/// Has a child process check what the shell makes of the samples.
void CheckShellElsewhere(Report& report, const InstallationFiles& files, InstallerSteps& steps)
{
    const std::filesystem::path part = files.logs / "shell report.txt";
    steps.Succeed("the steps with the shell come to their end",
                  {(ProgramFolder() / L"windows_walk.exe").wstring(), L"--shell", part.wstring()});
    report.AddPart(part);
}

void CheckInstalled(Report& report, const InstallationFiles& files, InstallerSteps& steps)
{
    steps.Succeed("the registration is complete", {InstalledTool(), L"register", L"--check"});
    CheckSignature(report, InstallationFolder() / L"Lumora.dll");
    CheckSignature(report, InstalledTool());
    CheckShellElsewhere(report, files, steps);
    steps.Succeed("the gauntlet finds nothing in the samples",
                  {(ProgramFolder() / L"gauntlet.exe").wstring(), files.samples.wstring()});
}

/// Without two extensions, and then a newer version in its place.
void CheckChoiceAndUpgrade(Report& report, const InstallationFiles& files, InstallerSteps& steps)
{
    const std::filesystem::path package = files.packages / "Lumora.msi";
    const std::filesystem::path newer = files.packages / "Lumora-newer.msi";
    steps.Install("installation without .dm4 and .map", package, {0}, {L"WITHOUT=.dm4,.map"});
    steps.Expect("the shell asks Lumora about .mrc files", HandlesPropertiesOf(L".mrc"));
    steps.Expect("the shell does not ask Lumora about .dm4 files", !HandlesPropertiesOf(L".dm4"));
    if (!std::filesystem::exists(newer))
    {
        report.Add(Verdict::NotChecked, "upgrade and downgrade", {"there is no Lumora-newer.msi"});
        steps.Remove("removal", package);
        return;
    }
    steps.Install("a newer version takes its place", newer, {0, ERROR_SUCCESS_REBOOT_REQUIRED});
    steps.Expect("there is one Lumora in the list of programs", ListedProducts() == 1);
    steps.Expect("the newer version leaves out the same extension", !HandlesPropertiesOf(L".dm4"));
    steps.Refuse("the older version is refused", package);
    steps.Succeed("the registration is still complete", {InstalledTool(), L"register", L"--check"});
    steps.Remove("removal", newer);
}

void InstallAndRemove(Report& report, const Host& host, const InstallationFiles& files)
{
    const std::filesystem::path package = files.packages / "Lumora.msi";
    InstallerSteps steps(report, files.logs);
    CheckSignature(report, package);
    const RegistrySnapshot before = TakeInstallationSnapshot(host);
    if (steps.Install("silent installation", package))
    {
        try
        {
            CheckInstalled(report, files, steps);
        }
        catch (const std::exception& exception)
        {
            // What was installed is removed all the same.
            report.Add(Verdict::Differs, "the steps with the installed package", {exception.what()});
        }
        steps.Remove("silent removal", package);
        report.AddDifferences("the registry is as before",
                              InstallationDifferences(before, TakeInstallationSnapshot(host)));
        CheckChoiceAndUpgrade(report, files, steps);
    }
    report.AddDifferences("the registry is as before the first installation",
                          InstallationDifferences(before, TakeInstallationSnapshot(host)));
    if (host.isWine)
        report.Add(Verdict::NotChecked, "PATH is as before", {"Wine's installer leaves a semicolon in it"});
    if (steps.NeedsRestart())
        report.Add(Verdict::NotChecked, "the folder is gone", {"a file in use goes at the next restart"});
    else
        steps.Expect("the folder is gone", !std::filesystem::exists(InstallationFolder()));
}

} // namespace

void WalkThroughInstallation(Report& report, const Host& host, const InstallationFiles& files)
{
    const char* reason = nullptr;
    if (!std::filesystem::exists(files.packages / "Lumora.msi"))
        reason = "there is no Lumora.msi";
    else if (!host.isElevated)
        reason = "it needs an administrator";
    else if (IsLumoraThere())
        reason = "there is a Lumora already; remove it first";
    if (reason)
        report.Add(Verdict::NotChecked, "the setup package", {reason});
    else
        InstallAndRemove(report, host, files);
}
