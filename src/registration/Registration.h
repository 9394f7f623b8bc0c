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

/// What became of a registration or a removal.
struct RegistrationResult
{
    /// The first failure; nothing when all went well.
    std::optional<RegistrationFailure> failure;
    /// The values that another program has set, and which were left to it.
    std::vector<std::wstring> leftToOthers;
};

/// How the registry compares with the table. Of our own keys the key is named, of the others the value.
struct RegistrationState
{
    std::optional<RegistrationFailure> failure;
    /// How many values are there as they should be.
    size_t inPlace = 0;
    /// What is not there.
    std::vector<std::wstring> missing;
    /// Our own keys that are not as they should be: those of another version, or for another Lumora.dll.
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
/// the call, and what has been written stays: the same call completes the work when the cause is gone.
[[nodiscard]] RegistrationResult Register(Scope scope, const std::wstring& dllPath,
                                          const std::optional<ExtensionNames>& leftOut = std::nullopt);

/// Removes what a registration of any Lumora.dll has written, and nothing that has become somebody else's
/// since. A failure does not keep the rest from being removed.
[[nodiscard]] RegistrationResult Unregister(Scope scope);

/// Compares without changing anything. What is left out on purpose is not missing.
[[nodiscard]] RegistrationState CheckRegistration(Scope scope, const std::wstring& dllPath);

} // namespace Lumora
