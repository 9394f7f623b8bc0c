#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// What stands in a part of the registry: the keys and values by path, and what the values hold.
using RegistrySnapshot = std::map<std::wstring, std::vector<uint8_t>>;

/// Everything that a registration could touch: the machine's and the user's software settings.
[[nodiscard]] RegistrySnapshot TakeRegistrySnapshot();

/// Paths of the keys and values that are in one snapshot alone or differ between them.
[[nodiscard]] std::vector<std::wstring> Differences(const RegistrySnapshot& before,
                                                    const RegistrySnapshot& after);
