#include "registration/Registration.h"
#include "windows/clients/LumoraModule.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/registry/ForeignValue.h"
#include "windows/registry/ReadOnlyKey.h"
#include "windows/tool/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Lumora::CheckRegistration;
using Lumora::RegistryBranch;
using Lumora::RegistryKey;
using Lumora::RegistryValue;
using Lumora::Scope;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

using Arguments = std::vector<std::wstring>;

/// The tests find the machine's registration complete, and leave it so.
class ToolRegister : public testing::Test
{
protected:
    void TearDown() override
    {
        ASSERT_FALSE(
            Lumora::Register(Scope::Machine, LumoraModule::File().wstring(), Lumora::Choices{}).failure);
    }

    [[nodiscard]] ToolRun Run(const Arguments& arguments, ToolOutput output = ToolOutput::Kept) const
    {
        return {arguments, folder.Path(), output};
    }

    static bool IsRegistered(Scope scope, const std::filesystem::path& dllPath = LumoraModule::File())
    {
        return CheckRegistration(scope, dllPath.wstring()).IsComplete();
    }

    TemporaryFolder folder;
};

TEST_F(ToolRegister, RegistersTheDllBesideItAndTakesItBack)
{
    const ToolRun removal = Run({L"unregister"});
    EXPECT_EQ(removal.exitCode, 0U) << removal.error;
    EXPECT_EQ(removal.output, "Lumora is not registered for all users of this machine any more.\n");
    EXPECT_FALSE(IsRegistered(Scope::Machine));

    const ToolRun registration = Run({L"register"});
    EXPECT_EQ(registration.exitCode, 0U) << registration.error;
    EXPECT_THAT(registration.output, StartsWith("Lumora is registered for all users of this machine: "));
    EXPECT_THAT(registration.output, EndsWith("\\Lumora.dll\n"));
    EXPECT_TRUE(IsRegistered(Scope::Machine));
}

TEST_F(ToolRegister, RegistersTheDllThatIsNamed)
{
    const std::filesystem::path other = folder.Write("other.dll", std::vector<uint8_t>(1));
    const ToolRun run = Run({L"register", L"--dll", L"other.dll"});
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_TRUE(IsRegistered(Scope::Machine, other));
}

TEST_F(ToolRegister, RegistersNoDllThatIsNotThere)
{
    const ToolRun run = Run({L"register", L"--dll", L"nowhere.dll"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.error, HasSubstr("\\nowhere.dll"));
    EXPECT_TRUE(IsRegistered(Scope::Machine));
}

TEST_F(ToolRegister, RegistersForTheUserAlone)
{
    const ToolRun registration = Run({L"register", L"--user"});
    EXPECT_EQ(registration.exitCode, 0U) << registration.error;
    EXPECT_THAT(registration.output, StartsWith("Lumora is registered for you: "));
    EXPECT_THAT(registration.output, HasSubstr("from the machine alone"));
    EXPECT_TRUE(IsRegistered(Scope::User));
    const ToolRun removal = Run({L"unregister", L"--user"});
    EXPECT_EQ(removal.exitCode, 0U) << removal.error;
    EXPECT_FALSE(IsRegistered(Scope::User));
    EXPECT_TRUE(IsRegistered(Scope::Machine));
}

TEST_F(ToolRegister, ChecksWithoutChangingAnything)
{
    EXPECT_EQ(Run({L"register", L"--check"}).exitCode, 0U);
    ASSERT_FALSE(Lumora::Unregister(Scope::Machine).failure);
    const ToolRun run = Run({L"register", L"--check"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.output, HasSubstr("Missing: HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\CLSID\\"));
    EXPECT_THAT(run.output, HasSubstr("Lumora is not completely registered for all users"));
    EXPECT_FALSE(IsRegistered(Scope::Machine));
}

// As when a setup program runs it, which has no console.
TEST_F(ToolRegister, DoesWhatItIsToldWhenItCannotSaySo)
{
    const ToolRun removal = Run({L"unregister"}, ToolOutput::Unwritable);
    EXPECT_EQ(removal.exitCode, 0U) << removal.error;
    EXPECT_FALSE(IsRegistered(Scope::Machine));
    const ToolRun registration = Run({L"register"}, ToolOutput::Unwritable);
    EXPECT_EQ(registration.exitCode, 0U) << registration.error;
    EXPECT_TRUE(IsRegistered(Scope::Machine));
}

TEST_F(ToolRegister, SaysWhatIsLeftToAnotherProgram)
{
    const RegistryBranch handlers{
        HKEY_LOCAL_MACHINE,
        L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\PropertySystem\\PropertyHandlers"};
    const ForeignValue handler(RegistryKey(handlers, L".rec"), {},
                               RegistryValue::Text(L"{11111111-2222-3333-4444-555555555555}"));
    const ToolRun run = Run({L"register"});
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_THAT(run.output,
                EndsWith("Left to another program: HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\"
                         "CurrentVersion\\PropertySystem\\PropertyHandlers\\.rec\n"));
}

TEST_F(ToolRegister, SaysThatRightsAreMissing)
{
    const std::wstring key = L"SOFTWARE\\Classes\\.mrc";
    ASSERT_EQ(RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"PerceivedType"), ERROR_SUCCESS);
    const ReadOnlyKey locked(key);
    const ToolRun run = Run({L"register"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_EQ(run.error, "lumora: cannot write HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\.mrc: access is denied "
                         "(E_ACCESSDENIED). This needs administrator rights: start lumora from an elevated "
                         "prompt, or use --user\n");
}

TEST_F(ToolRegister, IsAskedForByCommandsThatNeedIt)
{
    ASSERT_FALSE(Lumora::Unregister(Scope::Machine).failure);
    for (const wchar_t* const command : {L"info", L"render"})
    {
        const ToolRun run = Run({command, L"x.mrc"});
        EXPECT_EQ(run.exitCode, 1U);
        EXPECT_EQ(run.error,
                  "lumora: Lumora is not registered with Windows; \"lumora register\" does that\n");
    }
}

TEST_F(ToolRegister, CommandsSayThatTheRegisteredDllIsGone)
{
    const std::filesystem::path gone = folder.Write("gone.dll", std::vector<uint8_t>(1));
    ASSERT_EQ(Run({L"register", L"--dll", L"gone.dll"}).exitCode, 0U);
    std::filesystem::remove(gone);
    const ToolRun run = Run({L"info", L"x.mrc"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.error, StartsWith("lumora: cannot start Lumora's property handler: "));
}

TEST_F(ToolRegister, LeavesExtensionsOut)
{
    const ToolRun run = Run({L"register", L"--without", L"H5; .mrc"});
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_THAT(run.output, HasSubstr("Left out: .h5,.mrc\n"));
    EXPECT_THAT(Lumora::PresentChoices(Scope::Machine).leftOut, ElementsAre(L".h5", L".mrc"));

    const ToolRun check = Run({L"register", L"--check"});
    EXPECT_EQ(check.exitCode, 0U);
    EXPECT_THAT(check.output, HasSubstr("Left out: .h5,.mrc\n"));

    EXPECT_EQ(Run({L"register"}).exitCode, 0U);
    EXPECT_THAT(Lumora::PresentChoices(Scope::Machine).leftOut, ElementsAre(L".h5", L".mrc"));

    EXPECT_EQ(Run({L"register", L"--without", L"none"}).exitCode, 0U);
    EXPECT_THAT(Lumora::PresentChoices(Scope::Machine).leftOut, IsEmpty());
}

TEST_F(ToolRegister, LeavesNoExtensionOutThatItDoesNotKnow)
{
    const ToolRun run = Run({L"register", L"--without", L".mrc,.png"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.error, HasSubstr("the extension .png cannot be left out"));
    EXPECT_THAT(Lumora::PresentChoices(Scope::Machine).leftOut, IsEmpty());
    EXPECT_EQ(Run({L"register", L"--without"}).exitCode, 2U);
}

TEST_F(ToolRegister, TakesEachChoiceAndItsOpposite)
{
    const ToolRun run = Run({L"register", L"--with", L".h5", L"--no-pictures", L"--photo-viewer"});
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    const char* const choices =
        "With properties: .h5\nNot taken for pictures\nOffered in Windows Photo Viewer\n";
    EXPECT_THAT(run.output, EndsWith(choices));
    const ToolRun later = Run({L"register", L"--check"});
    EXPECT_EQ(later.exitCode, 0U);
    EXPECT_THAT(later.output, StartsWith(choices));
    const ToolRun doctor = Run({L"doctor"});
    EXPECT_EQ(doctor.exitCode, 0U) << doctor.output;
    EXPECT_THAT(doctor.output, HasSubstr(" entries; With properties: .h5; Not taken for pictures; Offered in "
                                         "Windows Photo Viewer\n"));

    const ToolRun opposite = Run({L"register", L"--with", L"none", L"--pictures", L"--no-photo-viewer"});
    EXPECT_EQ(opposite.exitCode, 0U) << opposite.error;
    EXPECT_EQ(Lumora::PresentChoices(Scope::Machine), Lumora::Choices{});
}

TEST_F(ToolRegister, SaysWhichPropertiesAreNoChoice)
{
    const ToolRun run = Run({L"register", L"--with", L".mrc"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_EQ(run.error, "lumora: properties cannot be chosen for the extension .mrc: they are always "
                         "registered\n");
}

} // namespace
