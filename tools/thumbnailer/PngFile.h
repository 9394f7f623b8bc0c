#pragma once

#include "shared/Picture.h"
#include "shared/linux/PngEncoder.h"

#include <string>

namespace Lumora {

/// Writes the picture as a PNG file with these texts. The file gets its name, and replaces one of that name,
/// only when it is complete; but an empty file is filled. Throws std::runtime_error.
void WritePng(const std::string& path, const Picture& picture, const PngTexts& texts);

} // namespace Lumora
