#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Runs a program, the first of the words, with the others as its arguments. A new file keeps all that it
/// prints. Returns its exit code, or nothing if it had to be ended, with its child processes, after so many
/// seconds. Throws std::runtime_error if it cannot be started.
std::optional<unsigned long> RunLogged(const std::vector<std::wstring>& words, unsigned seconds,
                                       const std::filesystem::path& log);
