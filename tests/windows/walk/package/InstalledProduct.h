#pragma once

#include "windows/registry/RegistrySnapshot.h"
#include "windows/walk/Host.h"

#include <filesystem>
#include <string>
#include <vector>

/// Where the setup package puts its files.
[[nodiscard]] std::filesystem::path InstallationFolder();

/// Whether there are files or settings of an installation or a registration for the machine.
[[nodiscard]] bool IsLumoraThere();

/// How many entries with the name Lumora the list of installed programs has.
[[nodiscard]] size_t ListedProducts();

/// Whether the shell asks Lumora for the properties of files with this extension.
[[nodiscard]] bool HandlesPropertiesOf(const std::wstring& extension);

/// The parts of the registry that an installation may touch; under Wine without PATH.
[[nodiscard]] RegistrySnapshot TakeInstallationSnapshot(const Host& host);

/// What differs between two of these snapshots, without what the installer and the shell keep for themselves.
[[nodiscard]] std::vector<std::string> InstallationDifferences(const RegistrySnapshot& before,
                                                               const RegistrySnapshot& after);
