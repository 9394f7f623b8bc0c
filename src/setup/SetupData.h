#pragma once

#include "registration/Choices.h"

#include <string>

namespace Lumora {

/// What the package tells an action.
struct SetupData
{
    /// Where the installer puts Lumora.dll.
    std::wstring dllPath;
    Choices choices;
    /// What is wrong with a choice of the administrator; empty if nothing is.
    std::wstring mistake;
};

/// Reads "path|WITHOUT=choice|KEPTWITHOUT=choice", with any of the properties that Choices.h names. A choice
/// that is not made now is the one that an earlier installation has stored.
[[nodiscard]] SetupData ReadSetupData(const std::wstring& text);

} // namespace Lumora
