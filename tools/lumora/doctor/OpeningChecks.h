#pragma once

#include "lumora/doctor/Diagnosis.h"
#include "lumora/files/FileSource.h"
#include "lumora/pictures/Imaging.h"

namespace Lumora {

/// Opens the file as file managers do, for a thumbnail and for properties, and shows what the reader noted.
void CheckOpening(Imaging& imaging, const SourceFile& file, Diagnosis& diagnosis);

} // namespace Lumora
