#include "lumora/windows/doctor/RegistrationChecks.h"
#include "windows/registry/damage/DamagedEntry.h"
#include "windows/tool/ToolDoctorTest.h"

#include <gmock/gmock.h>

using Lumora::CheckState;
using Lumora::RegistryEntry;
using Lumora::Scope;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The problems that the doctor finds in the registration, or the notes.
std::vector<std::wstring> Findings(CheckState state)
{
    Lumora::Diagnosis diagnosis;
    static_cast<void>(Lumora::CheckRegistrations({}, diagnosis));
    std::vector<std::wstring> findings;
    for (const Lumora::Check& check : diagnosis.Checks())
    {
        if (check.state == state)
            findings.push_back(check.what + L": " + check.detail);
    }
    return findings;
}

/// One entry for each row of the registration's table: those of the classes, the first pattern, and those of
/// one extension. The tests of the registration look at all others.
std::vector<RegistryEntry> EntriesOfEachKind()
{
    std::vector<RegistryEntry> entries =
        Lumora::RegistryEntries(Scope::Machine, LumoraModule::File().wstring());
    std::erase_if(entries, [](const RegistryEntry& entry) {
        const std::wstring path = entry.key.FullPath();
        const bool isPattern = path.find(L"\\Patterns\\") != std::wstring::npos;
        return (isPattern && !path.ends_with(L"\\0")) || (!entry.isOwn && entry.extension != L".mrc");
    });
    return entries;
}

/// True for the entries that name the DLL of a class.
bool IsServer(const RegistryEntry& entry)
{
    return entry.name.empty() && entry.key.FullPath().ends_with(L"\\InprocServer32");
}

TEST_F(ToolDoctor, NamesEachKindOfEntryThatIsMissing)
{
    for (const RegistryEntry& entry : EntriesOfEachKind())
    {
        SCOPED_TRACE(testing::Message() << ShownName(entry) << " -> " << entry.name);
        const DamagedEntry damaged(entry, Damage::Deleted);
        EXPECT_THAT(Findings(CheckState::Problem),
                    Contains(L"registration for all users: without " + ShownName(entry)));
    }
}

TEST_F(ToolDoctor, NamesEachKindOfEntryThatIsChanged)
{
    for (const RegistryEntry& entry : EntriesOfEachKind())
    {
        SCOPED_TRACE(testing::Message() << ShownName(entry) << " -> " << entry.name);
        const DamagedEntry damaged(entry, Damage::Changed);
        const std::vector<std::wstring> problems = Findings(CheckState::Problem);
        if (IsServer(entry))
            EXPECT_THAT(problems, Contains(L"Lumora.dll: " + damaged.value.AsText() + L" is not there"));
        else if (entry.isOwn)
            EXPECT_THAT(problems, ElementsAre(L"registration for all users: outdated: " + ShownName(entry)));
        else
        {
            EXPECT_THAT(problems, IsEmpty());
            EXPECT_THAT(Findings(CheckState::Note),
                        ElementsAre(L"left to another program: " + ShownName(entry)));
        }
    }
}

} // namespace
