#pragma once

#include "registration/RegistryKey.h"

#include <guiddef.h>

#include <string>
#include <string_view>
#include <vector>

namespace Lumora {

/// For whom a registration is made.
enum class Scope
{
    Machine,
    User,
};

/// File name extensions, each with its dot and in lowercase.
using ExtensionNames = std::vector<std::wstring>;

/// One value of the registration.
struct RegistryEntry
{
    RegistryKey key;
    /// Empty for the default value.
    std::wstring name;
    RegistryValue value;
    /// Whether the key is ours alone. All other keys belong to a file name extension, and another program may
    /// have set the value before us.
    bool isOwn;
    /// The file name extension that the entry is about; empty for an entry of the classes.
    std::wstring extension;
};

/// Every value of the registration, in the order of writing, for a Lumora.dll at that path. For a user, there
/// are no property handlers and no kinds of files, because Windows reads these only for the whole machine.
/// For the extensions in `leftOut`, there is only the entry that stores that they are left out.
[[nodiscard]] std::vector<RegistryEntry> RegistryEntries(Scope scope, const std::wstring& dllPath,
                                                         const ExtensionNames& leftOut = {});

/// The entry that stores which extensions are left out.
[[nodiscard]] RegistryEntry LeftOutEntry(Scope scope, const ExtensionNames& leftOut);

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
