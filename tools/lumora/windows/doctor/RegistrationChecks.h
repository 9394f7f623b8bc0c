#pragma once

#include "lumora/doctor/Diagnosis.h"
#include "registration/RegistryTable.h"

#include <string>
#include <vector>

namespace Lumora {

/// What the checks of the registration mean for the checks after them.
struct RegistrationFindings
{
    /// Whether a DLL is registered for at least one of the classes.
    bool isRegistered = false;
    /// Whether every such DLL can be loaded.
    bool isUsable = false;
    /// Whose registration it is: the machine's where there is one.
    Scope scope = Scope::Machine;
    /// Values of the machine and of the user that another program has set.
    std::vector<std::wstring> leftToOthers;
};

/// Compares what is registered for the machine and for the user with what should be: the Lumora.dll of that
/// path, or without one the DLL beside this program.
[[nodiscard]] RegistrationFindings CheckRegistrations(const std::wstring& givenDllPath, Diagnosis& diagnosis);

} // namespace Lumora
