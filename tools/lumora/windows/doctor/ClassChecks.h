#pragma once

#include "lumora/doctor/Diagnosis.h"
#include "lumora/pictures/Imaging.h"
#include "registration/RegistryTable.h"

namespace Lumora {

/// Starts the classes, which are registered in that scope. Returns whether WIC knows the decoder.
[[nodiscard]] bool CheckClasses(const Imaging& imaging, Scope scope, Diagnosis& diagnosis);

} // namespace Lumora
