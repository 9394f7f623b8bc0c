#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Runs a program, the first of the words, with the others as its arguments, and calls `onLine` for each line
/// of its standard output. What it complains about is not kept. Returns its exit code, or nothing if it had
/// to be ended after so many seconds. Throws std::runtime_error if it cannot be started.
std::optional<unsigned long> RunProgram(const std::vector<std::wstring>& words, unsigned seconds,
                                        const std::function<void(const std::string& line)>& onLine);
