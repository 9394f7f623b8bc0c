#pragma once

#include "lumora/batch/FileTask.h"
#include "lumora/pictures/PictureFile.h"
#include "lumora/pictures/PictureWriter.h"

#include <string>

namespace Lumora {

/// Writes one picture that shows the frames that are ordered of a file, with their numbers. Throws a Failure.
PictureSize WriteMontage(IWICImagingFactory& factory, const PictureFile& file, const PictureOrder& order,
                         const std::wstring& path);

} // namespace Lumora
