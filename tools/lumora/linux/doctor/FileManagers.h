#pragma once

#include "lumora/doctor/Diagnosis.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Lumora {

/// A program that shows thumbnails, up to some size of the files.
struct FileManager
{
    std::wstring name;
    /// In bytes; 0 if there is none.
    uint64_t limit = 0;
};

/// Looks for file managers, and at their settings.
[[nodiscard]] std::vector<FileManager> CheckFileManagers(Diagnosis& diagnosis);

} // namespace Lumora
