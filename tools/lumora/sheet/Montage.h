#pragma once

#include "lumora/batch/FileTask.h"
#include "lumora/pictures/PictureFile.h"
#include "lumora/pictures/PictureWriter.h"

#include <string>

namespace Lumora {

/// Writes one picture that shows the frames that are ordered of a file, with their numbers. Throws a Failure.
Box WriteMontage(Imaging& imaging, const PictureFile& file, const PictureOrder& order,
                 const std::wstring& path);

} // namespace Lumora
