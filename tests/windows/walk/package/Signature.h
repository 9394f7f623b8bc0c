#pragma once

#include "windows/walk/Report.h"

#include <filesystem>

/// Checks the digital signature of a file, which need not have one.
void CheckSignature(Report& report, const std::filesystem::path& file);
