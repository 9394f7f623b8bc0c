#pragma once

#include "lumora/doctor/Diagnosis.h"
#include "lumora/doctor/RegistrationChecks.h"

#include <string>

namespace Lumora {

/// Whether Explorer shows thumbnails at all.
void CheckExplorerSettings(Diagnosis& diagnosis);

/// What Explorer is told about files of that name's extension, by a Lumora that is registered.
void CheckExtension(const std::wstring& fileName, const RegistrationFindings& findings, Diagnosis& diagnosis);

} // namespace Lumora
