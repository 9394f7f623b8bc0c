#include "windows/registry/RegistrationTest.h"
#include "windows/registry/damage/DamagedEntry.h"

#include "registration/Registration.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>

using Lumora::CheckRegistration;
using Lumora::RegistrationState;
using Lumora::RegistryEntry;
using Lumora::Scope;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

namespace {

/// What the check says when one entry of the machine's registration is damaged, for each entry in turn.
void ForEachEntry(
    Damage damage,
    const std::function<void(const RegistryEntry& entry, const RegistrationState& state)>& check)
{
    ASSERT_FALSE(Lumora::Register(Scope::Machine, dllPath).failure);
    for (const RegistryEntry& entry : Lumora::RegistryEntries(Scope::Machine, dllPath))
    {
        SCOPED_TRACE(testing::Message() << ShownName(entry) << " -> " << entry.name);
        const DamagedEntry damaged(entry, damage);
        check(entry, CheckRegistration(Scope::Machine, dllPath));
    }
    EXPECT_TRUE(CheckRegistration(Scope::Machine, dllPath).IsComplete());
}

/// The names of those entries that are ours alone, or of the others, each name once.
std::vector<std::wstring> ShownNames(const std::vector<RegistryEntry>& entries, bool areOwn)
{
    std::vector<std::wstring> names;
    for (const RegistryEntry& entry : entries)
    {
        const std::wstring name = ShownName(entry);
        if (entry.isOwn == areOwn && std::ranges::find(names, name) == names.end())
            names.push_back(name);
    }
    return names;
}

} // namespace

TEST_F(Registration, NoticesEachEntryThatIsMissing)
{
    ForEachEntry(Damage::Deleted, [](const RegistryEntry& entry, const RegistrationState& state) {
        EXPECT_THAT(state.missing, ElementsAre(ShownName(entry)));
        EXPECT_THAT(state.outdated, IsEmpty());
        EXPECT_THAT(state.leftToOthers, IsEmpty());
    });
}

TEST_F(Registration, NoticesEachEntryThatIsChanged)
{
    ForEachEntry(Damage::Changed, [](const RegistryEntry& entry, const RegistrationState& state) {
        EXPECT_THAT(entry.isOwn ? state.outdated : state.leftToOthers, ElementsAre(ShownName(entry)));
        EXPECT_THAT(entry.isOwn ? state.leftToOthers : state.outdated, IsEmpty());
        EXPECT_THAT(state.missing, IsEmpty());
    });
}

TEST_F(Registration, NoticesThatAllEntriesAreOfAnotherType)
{
    for (const Scope scope : {Scope::Machine, Scope::User})
    {
        ASSERT_FALSE(Lumora::Register(scope, dllPath).failure);
        const std::vector<RegistryEntry> entries = Lumora::RegistryEntries(scope, dllPath);
        std::vector<std::unique_ptr<DamagedEntry>> damaged;
        for (const RegistryEntry& entry : entries)
            damaged.push_back(std::make_unique<DamagedEntry>(entry, Damage::OfAnotherType));
        const RegistrationState state = CheckRegistration(scope, dllPath);
        EXPECT_EQ(state.inPlace, 0U);
        EXPECT_THAT(state.outdated, UnorderedElementsAreArray(ShownNames(entries, true)));
        EXPECT_THAT(state.leftToOthers, UnorderedElementsAreArray(ShownNames(entries, false)));
    }
}
