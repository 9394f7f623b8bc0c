#pragma once

#include "core/display/DisplayPicture.h"

#include <string>
#include <utility>
#include <vector>

namespace Lumora {

/// Keys and values of a PNG file, in UTF-8.
using PngTexts = std::vector<std::pair<std::string, std::string>>;

/// Writes the picture as a PNG file with these texts. The file gets its name, and replaces one of that name,
/// only when it is complete. Throws std::runtime_error.
void WritePng(const std::string& path, const Tav::Imaging::RawImage::DisplayPicture& picture,
              const PngTexts& texts);

} // namespace Lumora
