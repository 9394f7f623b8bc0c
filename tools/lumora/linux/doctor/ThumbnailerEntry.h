#pragma once

#include "lumora/doctor/Diagnosis.h"

#include <string>
#include <vector>

namespace Lumora {

/// Lumora's thumbnailer, as desktops find it.
struct ThumbnailerEntry
{
    /// Whether the entry is there, and its program.
    bool isUsable = false;
    /// The MIME types of the files that are given to the program.
    std::vector<std::string> types;
};

/// Looks for the entry, its program and the kinds of files.
[[nodiscard]] ThumbnailerEntry CheckThumbnailer(Diagnosis& diagnosis);

} // namespace Lumora
