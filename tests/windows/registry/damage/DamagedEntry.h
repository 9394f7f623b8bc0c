#pragma once

#include "registration/RegistryTable.h"

#include <string>

/// What has become of a value of the registration.
enum class Damage
{
    Deleted,
    Changed,
    OfAnotherType,
};

/// The name of an entry for people: of our own keys, the key alone is named.
[[nodiscard]] std::wstring ShownName(const Lumora::RegistryEntry& entry);

/// Damages an entry that is registered, while this lives.
class DamagedEntry
{
public:
    DamagedEntry(Lumora::RegistryEntry registered, Damage damage);
    DamagedEntry(const DamagedEntry&) = delete;
    DamagedEntry& operator=(const DamagedEntry&) = delete;
    ~DamagedEntry();

    /// What stands in its place now.
    Lumora::RegistryValue value;

private:
    Lumora::RegistryEntry entry;
};
