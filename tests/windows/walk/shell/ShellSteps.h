#pragma once

#include "windows/walk/Host.h"
#include "windows/walk/Report.h"

#include <filesystem>

/// Checks what the shell makes of the samples while Lumora is installed. The process should end then: the
/// shell may keep Lumora.dll in it, and the installer could not remove the file.
void CheckShell(Report& report, const Host& host, const std::filesystem::path& samples,
                const std::filesystem::path& pictures);

// The parts of it. COM must be initialised.

/// Asks the shell for the thumbnail of each sample, and compares it with the picture of the same name.
void CheckThumbnails(Report& report, const Host& host, const std::filesystem::path& samples,
                     const std::filesystem::path& pictures);

/// Compares the shell's properties of each sample with those that Lumora's property handler itself gives.
void CheckProperties(Report& report, const Host& host, const std::filesystem::path& samples);

/// Lists the commands that the shell offers for a sample.
void ListVerbs(Report& report, const std::filesystem::path& sample);

/// Lists the processes that have loaded Lumora.dll. Explorer itself must not be one of them.
void CheckProcesses(Report& report, const Host& host);
