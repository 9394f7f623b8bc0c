#include "windows/registry/damage/DamagedEntry.h"

#include <gtest/gtest.h>

#include <utility>

using Lumora::RegistryEntry;

std::wstring ShownName(const RegistryEntry& entry)
{
    const bool isNamed = !entry.isOwn && !entry.name.empty();
    return entry.key.FullPath() + (isNamed ? L", " + entry.name : L"");
}

DamagedEntry::DamagedEntry(RegistryEntry registered, Damage damage)
    : value(registered.value), entry(std::move(registered))
{
    if (damage == Damage::Deleted)
    {
        EXPECT_EQ(entry.key.DeleteValue(entry.name), ERROR_SUCCESS);
        return;
    }
    if (damage == Damage::Changed)
        value.bytes.front() ^= 1;
    else
        value.type = value.type == REG_SZ ? REG_EXPAND_SZ : REG_SZ;
    EXPECT_EQ(entry.key.Write(entry.name, value), ERROR_SUCCESS);
}

DamagedEntry::~DamagedEntry()
{
    EXPECT_EQ(entry.key.Write(entry.name, entry.value), ERROR_SUCCESS);
}
