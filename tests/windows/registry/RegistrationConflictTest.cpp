#include "windows/registry/RegistrationTest.h"

#include "registration/Registration.h"
#include "windows/registry/ReadOnlyKey.h"

#include <gmock/gmock.h>

using Lumora::CheckRegistration;
using Lumora::Register;
using Lumora::RegistrationResult;
using Lumora::RegistrationState;
using Lumora::Scope;
using Lumora::Unregister;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST_F(Registration, LeavesToOthersWhatTheyHaveSetBefore)
{
    const std::wstring foreignHandler = L"{11111111-2222-3333-4444-555555555555}";
    SetText(handlers + L".rec", L"", foreignHandler);
    SetText(classes + L".rec", L"Content Type", L"video/x-recording");
    const RegistrySnapshot withForeign = TakeRegistrySnapshot();

    const RegistrationResult registered = Register(Scope::Machine, dllPath);
    EXPECT_FALSE(registered.failure);
    EXPECT_THAT(registered.leftToOthers, ElementsAre(L"HKEY_LOCAL_MACHINE\\" + handlers + L".rec"));
    EXPECT_EQ(Text(handlers + L".rec"), foreignHandler);
    EXPECT_EQ(Text(classes + L".rec" + thumbnails), L"{C7657C4A-9F68-40fa-A4DF-96BC08EB3551}");

    const RegistrationResult removed = Unregister(Scope::Machine);
    EXPECT_FALSE(removed.failure);
    EXPECT_THAT(removed.leftToOthers, ElementsAre(L"HKEY_LOCAL_MACHINE\\" + handlers + L".rec"));
    EXPECT_THAT(Differences(withForeign, TakeRegistrySnapshot()), IsEmpty());
}

TEST_F(Registration, LeavesToOthersWhatTheyHaveSetSince)
{
    EXPECT_FALSE(Register(Scope::Machine, dllPath).failure);
    SetText(classes + L".mrc", L"", L"viewer.volume");
    SetText(classes + L".mrc", L"PerceivedType", L"document");
    SetText(classes + L".mrc\\shell\\open\\command", L"", L"viewer.exe \"%1\"");

    const RegistrationResult removed = Unregister(Scope::Machine);
    EXPECT_FALSE(removed.failure);
    EXPECT_THAT(removed.leftToOthers,
                ElementsAre(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\.mrc, PerceivedType"));
    EXPECT_EQ(Text(classes + L".mrc"), L"viewer.volume");
    EXPECT_EQ(Text(classes + L".mrc", L"PerceivedType"), L"document");
    EXPECT_EQ(Text(classes + L".mrc\\shell\\open\\command"), L"viewer.exe \"%1\"");
    EXPECT_EQ(Text(classes + L".mrc", L"Content Type"), absent);
    EXPECT_FALSE(Exists(classes + L".mrc\\ShellEx"));
}

TEST_F(Registration, KeepsAnEmptyKeyThatItNeverFilled)
{
    MakeKey(HKEY_LOCAL_MACHINE, classes + L".ali");
    EXPECT_FALSE(Unregister(Scope::Machine).failure);
    EXPECT_TRUE(Exists(classes + L".ali"));
}

TEST_F(Registration, TellsTheFirstKeyThatItCouldNotWriteAndCompletesTheWorkLater)
{
    // Below a key that lasts until the next start of Windows, none can be made that lasts longer.
    MakeKey(HKEY_LOCAL_MACHINE, classes + L".mrcs", REG_OPTION_VOLATILE);
    const RegistrationResult result = Register(Scope::Machine, dllPath);
    ASSERT_TRUE(result.failure);
    EXPECT_EQ(result.failure->key, L"HKEY_LOCAL_MACHINE\\" + classes + L".mrcs" + thumbnails);
    EXPECT_EQ(result.failure->error, ERROR_CHILD_MUST_BE_VOLATILE);

    ASSERT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, (classes + L".mrcs").c_str()), ERROR_SUCCESS);
    EXPECT_FALSE(Register(Scope::Machine, dllPath).failure);
    EXPECT_TRUE(CheckRegistration(Scope::Machine, dllPath).IsComplete());
}

TEST_F(Registration, TellsThatRightsAreMissing)
{
    MakeKey(HKEY_LOCAL_MACHINE, handlers + L".mrc");
    const ReadOnlyKey locked(handlers + L".mrc");
    const RegistrationResult result = Register(Scope::Machine, dllPath);
    ASSERT_TRUE(result.failure);
    EXPECT_EQ(result.failure->key, L"HKEY_LOCAL_MACHINE\\" + handlers + L".mrc");
    EXPECT_EQ(result.failure->error, ERROR_ACCESS_DENIED);
}

TEST_F(Registration, IsRemovedAsFarAsRightsAllow)
{
    EXPECT_FALSE(Register(Scope::Machine, dllPath).failure);
    {
        const ReadOnlyKey locked(handlers + L".mrc");
        const RegistrationResult result = Unregister(Scope::Machine);
        ASSERT_TRUE(result.failure);
        EXPECT_EQ(result.failure->key, L"HKEY_LOCAL_MACHINE\\" + handlers + L".mrc");
        EXPECT_EQ(result.failure->error, ERROR_ACCESS_DENIED);
        EXPECT_FALSE(Exists(handlers + L".rec"));
        EXPECT_FALSE(Exists(decoder));
        EXPECT_FALSE(Exists(handler));
    }
    EXPECT_FALSE(Unregister(Scope::Machine).failure);
    EXPECT_THAT(Differences(before, TakeRegistrySnapshot()), IsEmpty());
}

TEST_F(Registration, IsCompleteAlthoughAnExtensionHasGoneToAnotherProgram)
{
    EXPECT_FALSE(Register(Scope::Machine, dllPath).failure);
    SetText(handlers + L".mrc", L"", L"{11111111-2222-3333-4444-555555555555}");

    const RegistrationState state = CheckRegistration(Scope::Machine, dllPath);
    EXPECT_TRUE(state.IsComplete());
    EXPECT_THAT(state.leftToOthers, ElementsAre(L"HKEY_LOCAL_MACHINE\\" + handlers + L".mrc"));
}

TEST_F(Registration, LeavesALeftOutExtensionToItsOwner)
{
    SetText(handlers + L".mrc", L"", L"{11111111-2222-3333-4444-555555555555}");
    ASSERT_FALSE(Register(Scope::Machine, dllPath, Lumora::Choices{.leftOut = {L".mrc"}}).failure);
    EXPECT_EQ(Text(handlers + L".mrc"), L"{11111111-2222-3333-4444-555555555555}");
}

TEST_F(Registration, LeavesEqualValuesToThoseWhoHaveSetThem)
{
    // Every codec has its thumbnails made by this class.
    const std::wstring provider = L"{C7657C4A-9F68-40fa-A4DF-96BC08EB3551}";
    const std::wstring viewer = L"SOFTWARE\\Microsoft\\Windows Photo Viewer\\Capabilities\\FileAssociations";
    SetText(classes + L".map" + thumbnails, L"", provider);
    SetText(viewer, L".mrc", L"PhotoViewer.FileAssoc.Tiff");
    const RegistrySnapshot withForeign = TakeRegistrySnapshot();

    ASSERT_FALSE(Register(Scope::Machine, dllPath, Lumora::Choices{.leftOut = {L".map"}}).failure);
    EXPECT_EQ(Text(classes + L".map" + thumbnails), provider);
    EXPECT_EQ(Text(viewer, L".mrc"), L"PhotoViewer.FileAssoc.Tiff");
    ASSERT_FALSE(Unregister(Scope::Machine).failure);
    EXPECT_THAT(Differences(withForeign, TakeRegistrySnapshot()), IsEmpty());
}

TEST_F(Registration, KeepsItsClassesAndChoicesIfItCannotRemoveAnExtension)
{
    ASSERT_FALSE(Register(Scope::Machine, dllPath, Lumora::Choices{.leftOut = {L".map"}}).failure);
    const ReadOnlyKey locked(handlers + L".mrc");
    const RegistrationResult result =
        Register(Scope::Machine, dllPath, Lumora::Choices{.leftOut = {L".mrc"}});
    ASSERT_TRUE(result.failure);
    EXPECT_EQ(result.failure->key, L"HKEY_LOCAL_MACHINE\\" + handlers + L".mrc");
    EXPECT_EQ(Text(decoder + L"\\InprocServer32"), dllPath);
    EXPECT_THAT(Lumora::PresentChoices(Scope::Machine).leftOut, ElementsAre(L".map"));
}

} // namespace
