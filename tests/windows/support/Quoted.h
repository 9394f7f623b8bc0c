#pragma once

#include <string>

/// The argument as a program's start-up code takes it from a command line.
[[nodiscard]] std::wstring Quoted(const std::wstring& argument);
