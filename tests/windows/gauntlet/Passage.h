#pragma once

#include <filesystem>
#include <string>

/// Takes a file through Lumora as viewers and Explorer do: through WIC, each frame with all its pixels, and
/// through the property handler with all its values. Returns in a few words what came of it. Refusals are
/// good outcomes.
[[nodiscard]] std::string TakeThroughLumora(const std::filesystem::path& file);
