#pragma once

#include "windows/walk/Host.h"
#include "windows/walk/Report.h"

#include <filesystem>

/// What the steps of the setup package work with.
struct InstallationFiles
{
    /// The folder of Lumora.msi and, for the upgrade, Lumora-newer.msi.
    std::filesystem::path packages;
    std::filesystem::path samples;
    std::filesystem::path logs;
};

/// Installs the setup package without a question, checks what the shell makes of the samples then, upgrades,
/// and removes everything. Does nothing if Lumora is installed already or this process may not install.
void WalkThroughInstallation(Report& report, const Host& host, const InstallationFiles& files);
