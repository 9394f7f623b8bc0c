#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// All files below the folders, and those named themselves, sorted.
[[nodiscard]] std::vector<std::filesystem::path> FilesBelow(const std::vector<std::wstring>& folders);
