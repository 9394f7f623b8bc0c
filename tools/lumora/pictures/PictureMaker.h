#pragma once

#include "lumora/batch/FileReport.h"
#include "lumora/batch/FileTask.h"
#include "lumora/pictures/Imaging.h"

#include <string>
#include <vector>

namespace Lumora {

/// Writes the pictures that are ordered of a file, and adds each one that is complete to the reports. Throws
/// a Failure.
void MakePictures(Imaging& imaging, const std::wstring& path, const PictureOrder& order,
                  std::vector<PictureReport>& reports);

/// The name of the first picture that is ordered.
[[nodiscard]] std::wstring FirstPictureName(const PictureOrder& order);

} // namespace Lumora
