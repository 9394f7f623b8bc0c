#pragma once

#include "windows/walk/Report.h"

#include <filesystem>

/// Adds the steps of the checklist that a person has to look at: all but those that it marks as done by
/// run.cmd.
void AddWhatRemains(Report& report, const std::filesystem::path& checklist);
