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
    /// Keys of ours that are not correct, and values of an earlier version: they are from another version, or
    /// for another Lumora.dll.
    std::vector<std::wstring> outdated;
    /// Values that another program has set.
    std::vector<std::wstring> leftToOthers;

    /// Whether registering would change nothing.
    [[nodiscard]] bool IsComplete() const noexcept { return !failure && missing.empty() && outdated.empty(); }
};

/// Registers the Lumora.dll at that path. Lumora's own keys are replaced; a value that another program has
/// set is kept. What an earlier registration wrote and `choices` exclude is removed; without `choices`, those
/// of the earlier registration hold. The first failure ends the call, and the values written so far stay.
/// When the cause of the failure is gone, the same call completes the work.
[[nodiscard]] RegistrationResult Register(Scope scope, const std::wstring& dllPath,
                                          const std::optional<Choices>& choices = std::nullopt);

/// Removes what a registration of any Lumora.dll has written, except values that another program has changed
/// since. After a failure, it still removes the rest.
[[nodiscard]] RegistrationResult Unregister(Scope scope);

/// Compares without changing anything. What the present choices exclude does not count as missing.
[[nodiscard]] RegistrationState CheckRegistration(Scope scope, const std::wstring& dllPath);

/// Makes the shell of the user who runs this read thumbnails, properties and kinds again.
void TellTheShell() noexcept;

} // namespace Lumora
