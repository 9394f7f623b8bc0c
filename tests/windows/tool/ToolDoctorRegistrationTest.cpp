#include "registration/ClassIds.h"
#include "support/ByteWriter.h"
#include "support/FileBytes.h"
#include "windows/registry/ForeignValue.h"
#include "windows/tool/ToolDoctorTest.h"

#include <gmock/gmock.h>

#include <optional>

using Lumora::RegistryKey;
using Lumora::RegistryValue;
using Lumora::Scope;
using Lumora::View;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

using Bytes = std::vector<uint8_t>;

/// The headers of a program file as far as they tell for which processor it is, and zeros.
Bytes ProgramHeaders(uint16_t machine, uint16_t optionalMagic, uint16_t characteristics)
{
    ByteWriter file;
    file.Text("MZ").PadTo(60).Put(uint32_t{64});
    file.Text("PE").PadTo(68).Put(machine).PadTo(84).Put(uint16_t{240}).Put(characteristics);
    file.Put(optionalMagic).PadTo(4096);
    return std::move(file.bytes);
}

/// A copy of Lumora.dll of which one byte of the code is another.
Bytes ChangedDll()
{
    Bytes content = FileBytes(LumoraModule::File());
    content.at(content.size() / 2) ^= 1;
    return content;
}

Bytes CutDll()
{
    Bytes content = FileBytes(LumoraModule::File());
    content.resize(content.size() / 2);
    return content;
}

TEST_F(ToolDoctor, SaysThatOnly32BitProgramsAreTold)
{
    ASSERT_FALSE(Lumora::Unregister(Scope::Machine).failure);
    const ForeignValue server(Lumora::ServerKey(Scope::Machine, View::ThirtyTwoBit, CLSID_LumoraDecoder), {},
                              RegistryValue::Text(L"C:\\Old\\Lumora.dll"));
    const ToolRun run = Run({});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.output, HasSubstr("problem  decoder: is registered for 32-bit programs alone: "
                                      "C:\\Old\\Lumora.dll\n"));
    EXPECT_THAT(run.output, EndsWith("\nLumora is registered for 32-bit programs alone: run \"lumora "
                                     "register\" as administrator.\n"));
}

TEST_F(ToolDoctor, SaysWhatIsWrongWithTheRegisteredDll)
{
    struct Row
    {
        /// Nothing for a file that is not there.
        std::optional<Bytes> content;
        const char* defect;
    };
    constexpr uint16_t program = 0x0022;
    constexpr uint16_t dll = 0x2022;
    const Row rows[] = {
        {std::nullopt, "is not there"},
        {Bytes{}, "is no DLL"},
        {Bytes(1000, 'x'), "is no DLL"},
        {Bytes{'M', 'Z'}, "is no DLL"},
        {ByteWriter().Text("MZ").PadTo(60).Put(uint32_t{0xFFFFFFFF}).PadTo(4096).bytes, "is no DLL"},
        {ByteWriter().Text("MZ").PadTo(60).Put(uint32_t{0x7FFFFFFF}).PadTo(4096).bytes, "is no DLL"},
        {ProgramHeaders(0x8664, 0x020B, program), "is no DLL"},
        {ProgramHeaders(0x014C, 0x010B, dll), "is a 32-bit DLL"},
        {ProgramHeaders(0xAA64, 0x020B, dll), "is no DLL for x64 processors"},
        {ProgramHeaders(0x8664, 0x010B, dll), "is no DLL for x64 processors"},
        {ProgramHeaders(0x8664, 0x020B, dll),
         "cannot be loaded: the DLL is not a 64-bit DLL (ERROR_BAD_EXE_FORMAT)"},
        {ChangedDll(), "is damaged: its checksum does not fit"},
        {CutDll(), "is damaged: its checksum does not fit"},
    };
    const std::filesystem::path path = folder.Path() / "some.dll";
    ASSERT_FALSE(Lumora::Register(Scope::Machine, path.wstring()).failure);
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.defect);
        std::filesystem::remove(path);
        if (row.content)
            folder.Write("some.dll", *row.content);
        const ToolRun run = Run({});
        EXPECT_EQ(run.exitCode, 1U);
        EXPECT_THAT(run.output, HasSubstr("problem  Lumora.dll: " + Shown(path) + ' ' + row.defect + '\n'));
        EXPECT_THAT(run.output, Not(HasSubstr("decoder")));
        EXPECT_THAT(run.output, EndsWith("\nThe registration names " + Shown(path) + ", which " + row.defect +
                                         ": run \"lumora register\" again as administrator.\n"));
    }
}

TEST_F(ToolDoctor, AsksForTheDllWhereThereIsNoneToRegister)
{
    const std::filesystem::path path = folder.Path() / "gone.dll";
    ASSERT_FALSE(Lumora::Register(Scope::Machine, path.wstring()).failure);
    EXPECT_THAT(Run({L"--dll", L"gone.dll"}).output,
                EndsWith("\nThe registration names " + Shown(path) +
                         ", which is not there: copy Lumora.dll there again.\n"));

    ASSERT_FALSE(Lumora::Unregister(Scope::Machine).failure);
    const std::string call = "\"lumora register --dll " + Shown(path) + "\"";
    EXPECT_THAT(Run({L"--dll", L"gone.dll"}).output,
                EndsWith('\n' + Shown(path) + " is not there: copy Lumora.dll there and run " + call +
                         " as administrator.\n"));
    folder.Write("gone.dll", Bytes(1));
    EXPECT_THAT(Run({L"--dll", L"gone.dll"}).output,
                EndsWith('\n' + Shown(path) + " is no DLL: copy Lumora.dll there and run " + call +
                         " as administrator.\n"));
}

TEST_F(ToolDoctor, SaysThatAnotherLumoraIsRegistered)
{
    const std::filesystem::path other = folder.Write("other.dll", FileBytes(LumoraModule::File()));
    ASSERT_FALSE(Lumora::Register(Scope::Machine, other.wstring()).failure);
    const ToolRun run = Run({});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.output, HasSubstr("ok       decoder: starts\n"));
    EXPECT_THAT(run.output, EndsWith("\nThe registration names " + Shown(other) + " and not " +
                                     Shown(LumoraModule::File()) +
                                     ": run \"lumora register\" again as administrator.\n"));

    const ToolRun named = Run({L"--dll", L"OTHER.dll"});
    EXPECT_EQ(named.exitCode, 0U) << named.output;

    const ToolRun missing = Run({L"--dll", L"missing.dll"});
    EXPECT_EQ(missing.exitCode, 1U);
    EXPECT_THAT(missing.output, EndsWith("missing.dll is not there; registered is " + Shown(other) + ".\n"));
}

TEST_F(ToolDoctor, SaysWhatOfTheRegistrationIsMissingOrOutdated)
{
    const RegistryKey mrc = Lumora::ClassesKey(Scope::Machine, L".mrc");
    ASSERT_EQ(mrc.DeleteValue(L"PerceivedType"), ERROR_SUCCESS);
    ASSERT_EQ(mrc.DeleteValue(L"Content Type"), ERROR_SUCCESS);
    const ToolRun incomplete = Run({});
    EXPECT_EQ(incomplete.exitCode, 1U);
    EXPECT_THAT(incomplete.output,
                HasSubstr("problem  registration for all users: without "
                          "HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\.mrc, Content Type and 1 more\n"));
    EXPECT_THAT(incomplete.output, EndsWith("\nThe registration for all users is not complete: run \"lumora "
                                            "register\" again as administrator.\n"));

    ASSERT_FALSE(Lumora::Register(Scope::Machine, LumoraModule::File().wstring()).failure);
    const RegistryKey decoder =
        Lumora::ClassesKey(Scope::Machine, L"CLSID\\{0B6C4D37-1F0E-4E5B-9C57-6A3D2C9E41F8}");
    ASSERT_EQ(decoder.Write(L"Version", RegistryValue::Text(L"0.0.1.0")), ERROR_SUCCESS);
    const ToolRun outdated = Run({});
    EXPECT_EQ(outdated.exitCode, 1U);
    EXPECT_THAT(outdated.output, EndsWith("\nThe registration for all users is of another version: run "
                                          "\"lumora register\" again as administrator.\n"));
}

TEST_F(ToolDoctor, SaysThatTheUsersRegistrationHidesTheMachines)
{
    const ForeignValue server(Lumora::ServerKey(Scope::User, View::SixtyFourBit, CLSID_LumoraDecoder), {},
                              RegistryValue::Text(L"C:\\Old\\Lumora.dll"));
    const ToolRun run = Run({});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.output, HasSubstr("problem  registration for you: hides the one for all users: "
                                      "HKEY_CURRENT_USER\\SOFTWARE\\Classes\\CLSID\\{0B6C4D37-1F0E-4E5B-9C57-"
                                      "6A3D2C9E41F8}\\InprocServer32\n"));
    EXPECT_THAT(run.output, EndsWith("\nThe registration for you hides the one for all users, from which it "
                                     "differs: run \"lumora unregister --user\".\n"));
}

TEST_F(ToolDoctor, IsContentWithBothRegistrationsOfOneDll)
{
    ASSERT_FALSE(Lumora::Register(Scope::User, LumoraModule::File().wstring()).failure);
    const ToolRun run = Run({});
    EXPECT_EQ(run.exitCode, 0U) << run.output;
    EXPECT_THAT(run.output, HasSubstr("ok       registration for you: names the same DLL\n"));
}

// Wine's COM looks at the machine's classes alone, as that of Windows does for a program with administrator
// rights.
TEST_F(ToolDoctor, SaysWhatTheUsersRegistrationAloneIsWorth)
{
    ASSERT_FALSE(Lumora::Unregister(Scope::Machine).failure);
    ASSERT_FALSE(Lumora::Register(Scope::User, LumoraModule::File().wstring()).failure);
    const ToolRun run = Run({});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.output,
                StartsWith("ok       registration for you: " + Entries(Scope::User) +
                           "\n"
                           "ok       Lumora.dll: " +
                           Shown(LumoraModule::File()) +
                           "\n"
                           "ok       signature: there is none\n"
                           "note     properties: Windows takes them from a registration for all users alone\n"
                           "problem  decoder: cannot be started: the class is not registered "
                           "(REGDB_E_CLASSNOTREG)\n"));
    EXPECT_THAT(run.output, EndsWith("\nThe registration for you does not count for a program with "
                                     "administrator rights: run \"lumora doctor\" without them.\n"));

    ASSERT_FALSE(Lumora::Register(Scope::User, L"C:\\gone\\Lumora.dll").failure);
    EXPECT_THAT(Run({}).output, EndsWith("\nThe registration names C:\\gone\\Lumora.dll, which is not there: "
                                         "run \"lumora register --user\" again.\n"));
}

} // namespace
