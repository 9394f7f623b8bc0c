#pragma once

#include "lumora/doctor/Diagnosis.h"
#include "registration/RegistryTable.h"

#include <string>
#include <vector>

namespace Lumora {

/// What the checks of the registration mean for those that follow.
struct RegistrationFindings
{
    /// Whether COM is told of a DLL for one of the classes at least.
    bool isRegistered = false;
    /// Whether every such DLL can be loaded.
    bool isUsable = false;
    /// Whose registration it is: the machine's where there is one.
    Scope scope = Scope::Machine;
    /// Values of the machine's and of the user's that another program has set.
    std::vector<std::wstring> leftToOthers;
};

/// Compares what is registered for the machine and for the user with what should be: the Lumora.dll of that
/// path, or without one the DLL beside this program.
[[nodiscard]] RegistrationFindings CheckRegistrations(const std::wstring& givenDllPath, Diagnosis& diagnosis);

} // namespace Lumora
