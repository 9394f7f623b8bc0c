#pragma once

#include "windows/walk/Host.h"
#include "windows/walk/Report.h"

#include <filesystem>

/// Runs the test programs beside this one, each with a time limit. The folder of logs gets what they print.
/// `isQuick` leaves out what takes long.
void RunTestPrograms(Report& report, const Host& host, const std::filesystem::path& logs, bool isQuick);
