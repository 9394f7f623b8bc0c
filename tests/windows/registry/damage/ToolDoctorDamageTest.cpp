#include "windows/registry/damage/DamagedEntry.h"
#include "windows/tool/ToolDoctorTest.h"

#include <gmock/gmock.h>

using Lumora::RegistryEntry;
using Lumora::Scope;
using testing::HasSubstr;

namespace {

std::string Narrow(const std::wstring& text)
{
    std::string narrow;
    for (const wchar_t character : text)
        narrow.push_back(static_cast<char>(character));
    return narrow;
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
        const ToolRun run = Run({});
        EXPECT_EQ(run.exitCode, 1U);
        EXPECT_THAT(run.output, HasSubstr("problem  registration for all users: without " +
                                          Narrow(ShownName(entry)) + '\n'));
    }
}

TEST_F(ToolDoctor, NamesEachKindOfEntryThatIsChanged)
{
    for (const RegistryEntry& entry : EntriesOfEachKind())
    {
        SCOPED_TRACE(testing::Message() << ShownName(entry) << " -> " << entry.name);
        const DamagedEntry damaged(entry, Damage::Changed);
        const ToolRun run = Run({});
        const std::string name = Narrow(ShownName(entry)) + '\n';
        if (IsServer(entry))
        {
            const std::string dll = Narrow(damaged.value.AsText());
            EXPECT_THAT(run.output, HasSubstr("problem  Lumora.dll: " + dll + " is not there\n"));
        }
        else if (entry.isOwn)
            EXPECT_THAT(run.output, HasSubstr("problem  registration for all users: outdated: " + name));
        else
            EXPECT_THAT(run.output, HasSubstr("note     left to another program: " + name));
        EXPECT_EQ(run.exitCode, entry.isOwn ? 1U : 0U);
    }
}

} // namespace
