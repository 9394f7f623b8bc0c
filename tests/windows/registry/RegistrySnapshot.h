#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

/// What stands in a part of the registry: the keys and values by path, and what the values hold.
using RegistrySnapshot = std::map<std::wstring, std::vector<uint8_t>>;

/// A key below the machine's or the user's root, with all that is in it.
struct RegistryTree
{
    HKEY root;
    const wchar_t* key;
};

/// What stands in these trees.
[[nodiscard]] RegistrySnapshot TakeRegistrySnapshot(std::span<const RegistryTree> trees);

/// Everything that a registration could touch: the machine's and the user's software settings.
[[nodiscard]] RegistrySnapshot TakeRegistrySnapshot();

/// Paths of the keys and values that are in one snapshot alone or differ between them.
[[nodiscard]] std::vector<std::wstring> Differences(const RegistrySnapshot& before,
                                                    const RegistrySnapshot& after);
