#pragma once

#include "lumora/doctor/Diagnosis.h"
#include "lumora/windows/doctor/RegistrationChecks.h"

#include <string>

namespace Lumora {

/// Checks whether Explorer can load a DLL for x64 processors at all.
void CheckProcessor(Diagnosis& diagnosis);

/// Checks whether Explorer shows thumbnails at all.
void CheckExplorerSettings(Diagnosis& diagnosis);

/// Checks what is registered for the extension of that file name. Lumora must be registered.
void CheckExtension(const std::wstring& fileName, const RegistrationFindings& findings, Diagnosis& diagnosis);

} // namespace Lumora
