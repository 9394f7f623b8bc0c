#include "registration/Registration.h"

#include <shlobj.h>

#include <algorithm>

namespace Lumora {

namespace {

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

/// Whether a value that is present is one that Lumora writes or has written there.
bool IsOurs(const RegistryEntry& entry, const RegistryValue& present)
{
    return present == entry.value || present == entry.earlierValue;
}

void Write(const RegistryEntry& entry, RegistrationResult& result)
{
    std::optional<RegistryValue> present;
    if (!entry.isOwn && !Note(result.failure, entry.key, entry.key.Read(entry.name, present)))
        return;
    if (present && !IsOurs(entry, *present))
        AddName(result.leftToOthers, entry);
    else if (present != entry.value)
        Note(result.failure, entry.key, entry.key.Write(entry.name, entry.value));
}

void Remove(const RegistryEntry& entry, RegistrationResult& result)
{
    std::optional<RegistryValue> present;
    if (!Note(result.failure, entry.key, entry.key.Read(entry.name, present)) || !present)
        return;
    if (!IsOurs(entry, *present))
    {
        AddName(result.leftToOthers, entry);
        return;
    }
    if (Note(result.failure, entry.key, entry.key.DeleteValue(entry.name)))
        Note(result.failure, entry.key, entry.key.DeleteWhileEmpty());
}

} // namespace

RegistrationResult Register(Scope scope, const std::wstring& dllPath, const std::optional<Choices>& given)
{
    RegistrationResult result;
    const Choices choices = given ? *given : PresentChoices(scope);
    if (IsRegistered(scope))
    {
        // What another program has set there does not concern us.
        RegistrationResult removal;
        for (const RegistryEntry& entry : EntriesToRemove(scope, WrittenChoices(scope), choices))
            Remove(entry, removal);
        result.failure = removal.failure;
    }
    if (!result.failure)
        DeleteOwnTrees(scope, result.failure);
    for (const RegistryEntry& entry : RegistryEntries(scope, dllPath, choices))
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
    for (const RegistryEntry& entry : RegistryEntries(scope, {}, WrittenChoices(scope)))
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
    for (const RegistryEntry& entry : RegistryEntries(scope, dllPath, PresentChoices(scope)))
    {
        std::optional<RegistryValue> present;
        if (!Note(state.failure, entry.key, entry.key.Read(entry.name, present)))
            continue;
        if (!present)
            AddName(state.missing, entry);
        else if (*present == entry.value)
            ++state.inPlace;
        else
            AddName(entry.isOwn || IsOurs(entry, *present) ? state.outdated : state.leftToOthers, entry);
    }
    return state;
}

void TellTheShell() noexcept
{
    SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr);
}

} // namespace Lumora
