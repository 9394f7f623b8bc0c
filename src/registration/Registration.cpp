#include "registration/Registration.h"

#include <shlobj.h>

#include <algorithm>
#include <sstream>

namespace Lumora {

namespace {

/// Makes the shell read thumbnails, properties and kinds again.
void TellTheShell() noexcept
{
    SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr);
}

/// Keeps the first failure. Returns true if the result is no failure.
bool Note(std::optional<RegistrationFailure>& failure, const RegistryKey& key, LSTATUS result)
{
    if (result == ERROR_SUCCESS)
        return true;
    if (!failure)
        failure = {key.FullPath(), result};
    return false;
}

/// Adds the name of the value, for people. Of our own keys, only the key is named, and only once.
void AddName(std::vector<std::wstring>& names, const RegistryEntry& entry)
{
    std::wstring name = entry.key.FullPath();
    if (!entry.isOwn && !entry.name.empty())
        name += L", " + entry.name;
    if (std::find(names.begin(), names.end(), name) == names.end())
        names.push_back(std::move(name));
}

/// Deletes the keys that are ours alone, also patterns of a version that has more of them.
void DeleteOwnTrees(Scope scope, std::optional<RegistrationFailure>& failure)
{
    for (const RegistryKey& tree : OwnTrees(scope))
    {
        if (Note(failure, tree, tree.DeleteTree()))
            Note(failure, tree, tree.DeleteWhileEmpty());
    }
}

void Write(const RegistryEntry& entry, RegistrationResult& result)
{
    std::optional<RegistryValue> present;
    if (!entry.isOwn && !Note(result.failure, entry.key, entry.key.Read(entry.name, present)))
        return;
    if (!present)
        Note(result.failure, entry.key, entry.key.Write(entry.name, entry.value));
    else if (*present != entry.value)
        AddName(result.leftToOthers, entry);
}

void Remove(const RegistryEntry& entry, RegistrationResult& result)
{
    std::optional<RegistryValue> present;
    if (!Note(result.failure, entry.key, entry.key.Read(entry.name, present)) || !present)
        return;
    if (*present != entry.value)
    {
        AddName(result.leftToOthers, entry);
        return;
    }
    if (Note(result.failure, entry.key, entry.key.DeleteValue(entry.name)))
        Note(result.failure, entry.key, entry.key.DeleteWhileEmpty());
}

} // namespace

ExtensionNames LeftOutExtensions(Scope scope)
{
    const RegistryEntry entry = LeftOutEntry(scope, {});
    std::optional<RegistryValue> present;
    if (entry.key.Read(entry.name, present) != ERROR_SUCCESS || !present)
        return {};
    ExtensionNames names;
    std::wistringstream list(present->AsText());
    for (std::wstring name; std::getline(list, name, L',');)
        names.push_back(name);
    return names;
}

RegistrationResult Register(Scope scope, const std::wstring& dllPath,
                            const std::optional<ExtensionNames>& choice)
{
    RegistrationResult result;
    const ExtensionNames leftOut = choice ? *choice : LeftOutExtensions(scope);
    for (const RegistryEntry& entry : RegistryEntries(scope, dllPath))
    {
        if (std::find(leftOut.begin(), leftOut.end(), entry.extension) != leftOut.end())
            Remove(entry, result);
    }
    DeleteOwnTrees(scope, result.failure);
    for (const RegistryEntry& entry : RegistryEntries(scope, dllPath, leftOut))
    {
        if (result.failure)
            break;
        Write(entry, result);
    }
    TellTheShell();
    return result;
}

RegistrationResult Unregister(Scope scope)
{
    RegistrationResult result;
    for (const RegistryEntry& entry : RegistryEntries(scope, {}))
    {
        if (!entry.isOwn)
            Remove(entry, result);
    }
    DeleteOwnTrees(scope, result.failure);
    TellTheShell();
    return result;
}

RegistrationState CheckRegistration(Scope scope, const std::wstring& dllPath)
{
    RegistrationState state;
    for (const RegistryEntry& entry : RegistryEntries(scope, dllPath, LeftOutExtensions(scope)))
    {
        std::optional<RegistryValue> present;
        if (!Note(state.failure, entry.key, entry.key.Read(entry.name, present)))
            continue;
        if (!present)
            AddName(state.missing, entry);
        else if (*present != entry.value)
            AddName(entry.isOwn ? state.outdated : state.leftToOthers, entry);
        else
            ++state.inPlace;
    }
    return state;
}

} // namespace Lumora
