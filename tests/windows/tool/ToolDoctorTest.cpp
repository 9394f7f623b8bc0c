#include "windows/tool/ToolDoctorTest.h"

#include "support/files/BinFile.h"
#include "support/files/MrcFile.h"
#include "support/gray/GrayStack.h"
#include "windows/registry/ForeignValue.h"
#include "windows/registry/RegistrySnapshot.h"

#include <gmock/gmock.h>

using Lumora::RegistryBranch;
using Lumora::RegistryKey;
using Lumora::RegistryValue;
using Lumora::Scope;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

using Arguments = std::vector<std::wstring>;

/// The path of a file in JSON.
std::string Escaped(const std::filesystem::path& path)
{
    std::string text;
    for (const char character : path.string())
        text.append(character == '\\' ? 2 : 1, character);
    return text;
}

TEST_F(ToolDoctor, SaysThatAllIsWell)
{
    const ToolRun run = Run({});
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_EQ(run.output, "ok       registration for all users: " + Entries(Scope::Machine) +
                              "\n"
                              "ok       Lumora.dll: " +
                              Shown(LumoraModule::File()) +
                              "\n"
                              "ok       signature: there is none\n"
                              "ok       decoder: starts\n"
                              "ok       property handler: starts\n"
                              "ok       WIC: knows the decoder\n"
                              "ok       Explorer: shows thumbnails\n"
                              "\n"
                              "All is well: Windows finds Lumora, and Lumora starts.\n");
    EXPECT_THAT(run.error, IsEmpty());
}

TEST_F(ToolDoctor, PutsWhatIsWellWithAFileOnOneLine)
{
    folder.Write("a.mrc", GrayStack(3));
    folder.Write("b.rec", GrayStack(1));
    const ToolRun run = Run({L"a.mrc", L"b.rec"});
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_THAT(run.output,
                EndsWith("ok       a.mrc: .mrc is registered; WIC gives the thumbnails; 3 frames, the first "
                         "of 4 x 2 pixels; properties can be read\n"
                         "ok       b.rec: .rec is registered, which files of other kinds have too; WIC gives "
                         "the thumbnails; 1 frame of 4 x 2 pixels; properties can be read\n"
                         "\n"
                         "All is well: Windows finds Lumora, and Lumora opens what was named. A folder that "
                         "was open before may need a press of F5.\n"));
}

TEST_F(ToolDoctor, WritesOneObjectForPrograms)
{
    folder.Write("a.mrc", GrayStack(1));
    const ToolRun run = Run({L"--json", L"a.mrc"});
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_EQ(
        run.output,
        "{\"allIsWell\": true, \"advice\": \"All is well: Windows finds Lumora, and Lumora opens what was "
        "named. A folder that was open before may need a press of F5.\", \"checks\": [\n"
        "  {\"what\": \"registration for all users\", \"state\": \"ok\", \"detail\": \"" +
            Entries(Scope::Machine) +
            "\"},\n"
            "  {\"what\": \"Lumora.dll\", \"state\": \"ok\", \"detail\": \"" +
            Escaped(LumoraModule::File()) +
            "\"},\n"
            "  {\"what\": \"signature\", \"state\": \"ok\", \"detail\": \"there is none\"},\n"
            "  {\"what\": \"decoder\", \"state\": \"ok\", \"detail\": \"starts\"},\n"
            "  {\"what\": \"property handler\", \"state\": \"ok\", \"detail\": \"starts\"},\n"
            "  {\"what\": \"WIC\", \"state\": \"ok\", \"detail\": \"knows the decoder\"},\n"
            "  {\"what\": \"Explorer\", \"state\": \"ok\", \"detail\": \"shows thumbnails\"}\n"
            "], \"files\": [\n"
            "  {\"path\": \"a.mrc\", \"checks\": [\n"
            "    {\"what\": \"extension\", \"state\": \"ok\", \"detail\": \".mrc is registered\"},\n"
            "    {\"what\": \"thumbnails\", \"state\": \"ok\", \"detail\": \"WIC gives the "
            "thumbnails\"},\n"
            "    {\"what\": \"picture\", \"state\": \"ok\", \"detail\": \"1 frame of 4 x 2 pixels\"},\n"
            "    {\"what\": \"properties\", \"state\": \"ok\", \"detail\": \"properties can be read\"}\n"
            "  ]}\n"
            "]}\n");
}

TEST_F(ToolDoctor, SaysThatLumoraIsNotRegistered)
{
    ASSERT_FALSE(Lumora::Unregister(Scope::Machine).failure);
    folder.Write("cut.mrc", MrcFile().Size(4, 2, 1).Mode(6).Build());
    const ToolRun run = Run({L"cut.mrc"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_EQ(run.output, "ok       Lumora.dll: " + Shown(LumoraModule::File()) +
                              "\n"
                              "problem  registration: there is none\n"
                              "ok       Explorer: shows thumbnails\n"
                              "note     cut.mrc: picture: not looked at, as Lumora does not start\n"
                              "\n"
                              "Lumora is not registered: run \"lumora register\" as administrator.\n");

    const ToolRun json = Run({L"--json"});
    EXPECT_EQ(json.exitCode, 1U);
    EXPECT_THAT(json.output, StartsWith("{\"allIsWell\": false, \"advice\": \"Lumora is not registered: run "
                                        "\\\"lumora register\\\" as administrator.\", \"checks\": [\n"));
    EXPECT_THAT(json.output, EndsWith("\n], \"files\": []}\n"));
}

TEST_F(ToolDoctor, TakesAHandlerOfAnotherProgramForAProblemOfItsFilesAlone)
{
    const ForeignValue handler(
        Lumora::ClassesKey(Scope::Machine, L".mrc\\ShellEx\\{e357fccd-a995-4576-b01f-234630154e96}"), {},
        RegistryValue::Text(L"{11111111-2222-3333-4444-555555555555}"));
    const std::string value =
        "HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\.mrc\\ShellEx\\{e357fccd-a995-4576-b01f-234630154e96}";
    folder.Write("a.mrc", GrayStack(1));
    folder.Write("a.mrcs", GrayStack(1));
    for (const Arguments& arguments : {Arguments{}, Arguments{L"a.mrcs"}})
    {
        const ToolRun run = Run(arguments);
        EXPECT_EQ(run.exitCode, 0U);
        EXPECT_THAT(run.output, AllOf(HasSubstr("note     left to another program: " + value + '\n'),
                                      HasSubstr("\nAll is well: ")));
    }
    const ToolRun run = Run({L"a.mrc"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.output, HasSubstr("problem  a.mrc: extension: left to another program: " + value +
                                      "\n"
                                      "problem  a.mrc: thumbnails: another program makes them: "
                                      "{11111111-2222-3333-4444-555555555555}\n"));
    EXPECT_THAT(run.output, EndsWith("\nAnother program has set " + value +
                                     ": if .mrc files should be Lumora's, delete that value and run "
                                     "\"lumora register\" again.\n"));
}

TEST_F(ToolDoctor, ShowsWhatTheReaderNotedAboutADamagedFile)
{
    folder.Write("cut.mrc", MrcFile().Size(4, 2, 1).Mode(6).Build());
    const ToolRun run = Run({L"cut.mrc"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.output, HasSubstr("problem  cut.mrc: picture: the picture cannot be read: "));
    EXPECT_THAT(run.output, HasSubstr("problem  cut.mrc: properties: the properties cannot be read: "
                                      "the operation failed (E_FAIL)\n"
                                      "note     cut.mrc: reader: [Lumora] MRC: No complete frame is present "
                                      "in the file\n\n"));
    EXPECT_THAT(run.output, EndsWith("; the reader noted \"[Lumora] MRC: No complete frame is present in the "
                                     "file\". The file is damaged, or of a kind that Lumora does not "
                                     "read.\n"));
}

TEST_F(ToolDoctor, SaysThatExplorerIsToldNothingAboutAnExtension)
{
    folder.Write("a.bin", BinFile().Size(4, 8).Samples(2, std::vector<uint8_t>(64)).Build());
    const ToolRun run = Run({L"a.bin"});
    EXPECT_EQ(run.exitCode, 0U) << run.output;
    EXPECT_THAT(run.output, HasSubstr("note     a.bin: extension: Explorer is told nothing about .bin files; "
                                      "those that Lumora reads open in programs that ask WIC\n"));
    EXPECT_THAT(run.output,
                EndsWith("\nAll is well, but Explorer is told nothing about .bin files and takes no "
                         "thumbnails of them from Lumora: those that Lumora reads open in programs "
                         "that ask WIC.\n"));
}

TEST_F(ToolDoctor, SaysThatAnExtensionIsLeftOutOnPurpose)
{
    const std::wstring dllPath = LumoraModule::File().wstring();
    ASSERT_FALSE(Lumora::Register(Scope::Machine, dllPath, Lumora::Choices{.leftOut = {L".rec"}}).failure);
    folder.Write("a.rec", GrayStack(1));
    const ToolRun run = Run({L"a.rec"});
    ASSERT_FALSE(Lumora::Register(Scope::Machine, dllPath, Lumora::Choices{}).failure);
    EXPECT_EQ(run.exitCode, 0U) << run.output;
    EXPECT_THAT(run.output, HasSubstr("note     a.rec: extension: .rec is left out of the registration on "
                                      "purpose\n"));
    EXPECT_THAT(run.output, EndsWith("\nAll is well, but .rec is left out of the registration on purpose: "
                                     "\"lumora register --without none\" takes it in.\n"));
}

TEST_F(ToolDoctor, SaysThatFilesWithAnyDataHaveNoProperties)
{
    const std::wstring dllPath = LumoraModule::File().wstring();
    folder.Write("a.h5", GrayStack(1));
    EXPECT_THAT(Run({L"a.h5"}).output,
                HasSubstr("ok       a.h5: .h5 is registered for thumbnails alone: "
                          "\"lumora register --with .h5\" as administrator adds properties; "));
    ASSERT_FALSE(
        Lumora::Register(Scope::Machine, dllPath, Lumora::Choices{.withProperties = {L".h5"}}).failure);
    const ToolRun run = Run({L"a.h5"});
    ASSERT_FALSE(Lumora::Register(Scope::Machine, dllPath, Lumora::Choices{}).failure);
    EXPECT_THAT(run.output, HasSubstr("ok       a.h5: .h5 is registered; WIC gives"));
}

TEST_F(ToolDoctor, SaysThatExplorerShowsNoThumbnails)
{
    const RegistryBranch explorer = {HKEY_CURRENT_USER,
                                     L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer"};
    const ForeignValue setting(RegistryKey(explorer, L"Advanced"), L"IconsOnly", RegistryValue::Number(1));
    const ToolRun run = Run({});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.output, EndsWith("\nExplorer shows icons only: in its folder options, turn off \"Always "
                                     "show icons, never thumbnails\".\n"));
}

TEST_F(ToolDoctor, SaysThatExplorerOnArm64CannotLoadTheDll)
{
    const RegistryBranch environment = {HKEY_LOCAL_MACHINE,
                                        L"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment"};
    const ForeignValue processor(RegistryKey(environment, {}), L"PROCESSOR_ARCHITECTURE",
                                 RegistryValue::Text(L"ARM64"));
    const ToolRun run = Run({});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.output, StartsWith("problem  processor: ARM64: Explorer cannot load Lumora.dll, which is "
                                       "for x64\n"));
    EXPECT_THAT(run.output,
                EndsWith("\nThis machine has an ARM64 processor, and its Explorer cannot load a "
                         "DLL for x64: there are no thumbnails. Programs for x64 that ask WIC show "
                         "the pictures.\n"));
}

TEST_F(ToolDoctor, SaysThatSmartAppControlMayBlockAnUnsignedDll)
{
    const RegistryBranch control = {HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control"};
    for (const auto& [number, sentence] :
         {std::pair(1U, "is on, which may block it"), std::pair(2U, "is trying out whether to block it")})
    {
        const ForeignValue state(RegistryKey(control, L"CI\\Policy"), L"VerifiedAndReputablePolicyState",
                                 RegistryValue::Number(number));
        const ToolRun run = Run({});
        EXPECT_EQ(run.exitCode, 0U);
        EXPECT_THAT(run.output,
                    HasSubstr(std::string("note     signature: there is none, and Smart App Control ") +
                              sentence + "\n"));
    }
}

TEST_F(ToolDoctor, TellsOfFilesThatAreNotThere)
{
    const ToolRun run = Run({L"missing.mrc"});
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.error, StartsWith("lumora: missing.mrc: "));
    EXPECT_THAT(run.output, EndsWith("\nNot all of the files that were named are there.\n"));
}

TEST_F(ToolDoctor, LooksAtTheFilesOfAFolderThatExplorerIsToldAbout)
{
    folder.Write("in\\a.mrc", GrayStack(1));
    folder.Write("in\\scan.dat", GrayStack(1));
    const ToolRun run = Run({L"in"});
    EXPECT_EQ(run.exitCode, 0U) << run.output;
    EXPECT_THAT(run.output, HasSubstr("ok       in\\a.mrc: "));
    EXPECT_THAT(run.output, Not(HasSubstr("scan.dat")));
}

TEST_F(ToolDoctor, ChangesNothing)
{
    folder.Write("a.mrc", GrayStack(1));
    const RegistrySnapshot registered = TakeRegistrySnapshot();
    EXPECT_EQ(Run({L"a.mrc"}).exitCode, 0U);
    EXPECT_THAT(Differences(registered, TakeRegistrySnapshot()), IsEmpty());

    ASSERT_FALSE(Lumora::Unregister(Scope::Machine).failure);
    const RegistrySnapshot unregistered = TakeRegistrySnapshot();
    EXPECT_EQ(Run({L"a.mrc"}).exitCode, 1U);
    EXPECT_THAT(Differences(unregistered, TakeRegistrySnapshot()), IsEmpty());
    EXPECT_THAT(folder.Files(), ElementsAre("a.mrc"));
}

} // namespace
