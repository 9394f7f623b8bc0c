#pragma once

#include "registration/RegistryTable.h"

#include <optional>
#include <string>
#include <vector>

namespace Lumora {

/// A key that could not be read or changed, and the error that Windows gave for it.
struct RegistrationFailure
{
    std::wstring key;
    LSTATUS error;
};

/// The result of a registration or a removal.
struct RegistrationResult
{
    /// The first failure; nothing when all went well.
    std::optional<RegistrationFailure> failure;
    /// The values that another program has set. They were not changed.
    std::vector<std::wstring> leftToOthers;
};

/// How the registry compares with the table. The lists name our own keys, and the values of all other keys.
struct RegistrationState
{
    std::optional<RegistrationFailure> failure;
    /// How many values are correct.
    size_t inPlace = 0;
    /// What is not there.
    std::vector<std::wstring> missing;
    /// Our own keys that are not correct: they are from another version, or for another Lumora.dll.
    std::vector<std::wstring> outdated;
    /// Values that another program has set.
    std::vector<std::wstring> leftToOthers;

    /// Whether registering would change nothing.
    [[nodiscard]] bool IsComplete() const noexcept { return !failure && missing.empty() && outdated.empty(); }
};

/// The extensions that the present registration leaves out; none where there is no registration.
[[nodiscard]] ExtensionNames LeftOutExtensions(Scope scope);

/// Registers the Lumora.dll at that path. Lumora's own keys are replaced; a value that another program has
/// set is kept. The extensions in `leftOut` are not registered, and what an earlier registration wrote for
/// them is removed; without `leftOut` the choice of the earlier registration is kept. The first failure ends
/// the call, and the values written so far stay. When the cause of the failure is gone, the same call
/// completes the work.
[[nodiscard]] RegistrationResult Register(Scope scope, const std::wstring& dllPath,
                                          const std::optional<ExtensionNames>& leftOut = std::nullopt);

/// Removes what a registration of any Lumora.dll has written, except values that another program has changed
/// since. After a failure, it still removes the rest.
[[nodiscard]] RegistrationResult Unregister(Scope scope);

/// Compares without changing anything. Extensions that are left out on purpose do not count as missing.
[[nodiscard]] RegistrationState CheckRegistration(Scope scope, const std::wstring& dllPath);

} // namespace Lumora
