#pragma once

#include "registration/Choices.h"
#include "registration/RegistryKey.h"
#include "registration/Scope.h"

#include <guiddef.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Lumora {

/// One value of the registration.
struct RegistryEntry
{
    RegistryKey key;
    /// Empty for the default value.
    std::wstring name;
    RegistryValue value;
    /// The value that an earlier version of Lumora has written in its place.
    std::optional<RegistryValue> earlierValue;
    /// Whether the key is ours alone. All other keys belong to a file name extension, and another program may
    /// have set the value before us.
    bool isOwn;
    /// The file name extension that the entry is about; empty for an entry of the classes.
    std::wstring extension;
};

/// Every value of the registration, in the order of writing, for a Lumora.dll at that path. For a user, there
/// is only what Windows reads for a user: no property handlers, no kinds of files, and no viewer.
[[nodiscard]] std::vector<RegistryEntry> RegistryEntries(Scope scope, const std::wstring& dllPath,
                                                         const Choices& choices = {});

/// The entries of extensions that the first choices have and the second ones have not.
[[nodiscard]] std::vector<RegistryEntry> EntriesToRemove(Scope scope, const Choices& written,
                                                         const Choices& wanted);

/// Whether there is a registration, complete or not, of any Lumora.dll.
[[nodiscard]] bool IsRegistered(Scope scope);

/// The choices that the present registration has stored; the usual ones where there is none.
[[nodiscard]] Choices PresentChoices(Scope scope);

/// The choices of all that the present registration may have written. Earlier versions knew fewer choices.
[[nodiscard]] Choices WrittenChoices(Scope scope);

/// A key among the classes of the machine or of the user.
[[nodiscard]] RegistryKey ClassesKey(Scope scope, std::wstring_view path);

/// Which programs see a class: Windows keeps two lists of them.
enum class View
{
    SixtyFourBit,
    ThirtyTwoBit,
};

/// The key whose default value names the DLL of a class.
[[nodiscard]] RegistryKey ServerKey(Scope scope, View view, REFGUID classId);

/// The keys that are ours with everything in them.
[[nodiscard]] std::vector<RegistryKey> OwnTrees(Scope scope);

} // namespace Lumora
