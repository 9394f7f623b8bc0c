#include "support/gray/GrayStack.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/registry/RegisteredLumora.h"
#include "windows/tool/ToolRun.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

namespace {

[[maybe_unused]] const auto* const registered = testing::AddGlobalTestEnvironment(new RegisteredLumora);

using Arguments = std::vector<std::wstring>;

TEST(Tool, PrintsItsVersion)
{
    const ToolRun run({L"--version"}, std::filesystem::temp_directory_path());
    EXPECT_EQ(run.exitCode, 0U);
    EXPECT_EQ(run.output, "lumora " LUMORA_VERSION "\n");
}

TEST(Tool, FailsWhenItCannotWriteWhatItWasAskedFor)
{
    const TemporaryFolder folder;
    folder.Write("a.mrc", GrayStack(1));
    const Arguments commandLines[] = {
        {L"--version"},        {L"unregister", L"--help"}, {L"info", L"a.mrc"},
        {L"render", L"a.mrc"}, {L"register", L"--check"},
    };
    for (const Arguments& arguments : commandLines)
    {
        const ToolRun run(arguments, folder.Path(), ToolOutput::Unwritable);
        EXPECT_EQ(run.exitCode, 1U) << std::filesystem::path(arguments.front());
        EXPECT_EQ(run.error, "lumora: not all of the output could be written\n");
    }
}

TEST(Tool, ReadsAFileThatIsBeingWritten)
{
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Write("live.mrc", GrayStack(1));
    const HANDLE writer =
        CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(writer, INVALID_HANDLE_VALUE);
    const ToolRun run({L"info", L"live.mrc"}, folder.Path());
    CloseHandle(writer);
    EXPECT_EQ(run.exitCode, 0U) << run.error;
}

TEST(Tool, OpensFilesFarDownInTheTree)
{
    const TemporaryFolder folder;
    const std::wstring name(100, L'd');
    const std::filesystem::path deep = std::filesystem::path(name) / name / name / L"a.mrc";
    ASSERT_GT((folder.Path() / deep).native().size(), size_t{MAX_PATH});
    folder.Write(deep, GrayStack(1));
    const ToolRun run({L"info", deep.wstring(), name}, folder.Path());
    EXPECT_EQ(run.exitCode, 0U) << run.error;
    EXPECT_THAT(run.output, HasSubstr("a.mrc\n"));
}

} // namespace
