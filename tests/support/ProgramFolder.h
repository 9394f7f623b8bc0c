#pragma once

#include <filesystem>

/// The folder of the running program.
[[nodiscard]] std::filesystem::path ProgramFolder();
