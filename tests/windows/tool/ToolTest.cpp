#include "support/gray/GrayStack.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/registry/RegisteredLumora.h"
#include "windows/tool/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

[[maybe_unused]] const auto* const registered = testing::AddGlobalTestEnvironment(new RegisteredLumora);

using Arguments = std::vector<std::wstring>;

ToolRun RunAnywhere(const Arguments& arguments)
{
    return {arguments, std::filesystem::temp_directory_path()};
}

TEST(Tool, TellsItsVersion)
{
    const ToolRun run = RunAnywhere({L"--version"});
    EXPECT_EQ(run.exitCode, 0U);
    EXPECT_EQ(run.output, "lumora " LUMORA_VERSION "\n");
    EXPECT_THAT(run.error, IsEmpty());
}

TEST(Tool, ExplainsItselfAndEachCommand)
{
    struct Row
    {
        Arguments arguments;
        const char* expected;
    };
    const Row rows[] = {
        {{L"--help"}, "Usage: lumora COMMAND"},
        {{L"-h"}, "Usage: lumora COMMAND"},
        {{L"info", L"--help"}, "Usage: lumora info"},
        {{L"--help", L"info"}, "Usage: lumora info"},
        {{L"render", L"x.mrc", L"-h"}, "Usage: lumora render"},
        {{L"sheet", L"--help"}, "Usage: lumora sheet"},
        {{L"doctor", L"--help"}, "Usage: lumora doctor"},
        {{L"register", L"--help"}, "Usage: lumora register"},
        {{L"unregister", L"--help"}, "Usage: lumora unregister"},
    };
    for (const Row& row : rows)
    {
        const ToolRun run = RunAnywhere(row.arguments);
        EXPECT_EQ(run.exitCode, 0U) << row.expected;
        EXPECT_THAT(run.output, HasSubstr(row.expected));
        EXPECT_THAT(run.output, EndsWith("\n"));
        EXPECT_THAT(run.error, IsEmpty());
    }
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

TEST(Tool, RefusesACommandLineThatMakesNoSense)
{
    struct Row
    {
        Arguments arguments;
        const char* complaint;
        const char* help;
    };
    const Row rows[] = {
        {{}, "a command is missing", "lumora --help"},
        {{L"show"}, "there is no command show", "lumora --help"},
        {{L"--frob"}, "there is no option --frob", "lumora --help"},
        {{L"--verbose", L"info", L"x"}, "there is no option --verbose", "lumora --help"},
        {{L"info"}, "a file or folder is missing", "lumora info --help"},
        {{L"info", L"--frame", L"1", L"x"}, "there is no option --frame here", "lumora info --help"},
        {{L"info", L"--json=yes", L"x"}, "--json takes no value", "lumora info --help"},
        {{L"render"}, "a file or folder is missing", "lumora render --help"},
        {{L"render", L"--json", L"x"}, "there is no option --json here", "lumora render --help"},
        {{L"render", L"x", L"-o"}, "-o needs a value", "lumora render --help"},
        {{L"render", L"-o", L"", L"x"}, "-o needs a value", "lumora render --help"},
        {{L"render", L"--frame", L"-1", L"x"}, "--frame does not take -1", "lumora render --help"},
        {{L"render", L"--frame=all4", L"x"}, "--frame does not take all4", "lumora render --help"},
        {{L"render", L"--frame", L"4294967296", L"x"}, "--frame does not take 4294967296", "render --help"},
        {{L"render", L"--frame", L"18446744073709551617", L"x"}, "--frame does not take", "render --help"},
        {{L"render", L"--size", L"0", L"x"}, "--size does not take 0", "lumora render --help"},
        {{L"render", L"--size", L"1.5", L"x"}, "--size does not take 1.5", "lumora render --help"},
        {{L"sheet"}, "a file or folder is missing", "lumora sheet --help"},
        {{L"sheet", L"--frame", L"1", L"x"}, "there is no option --frame here", "lumora sheet --help"},
        {{L"render", L"--columns", L"2", L"x"}, "there is no option --columns here", "lumora render --help"},
        {{L"sheet", L"x", L"-o"}, "-o needs a value", "lumora sheet --help"},
        {{L"sheet", L"--size", L"31", L"x"}, "--size does not take 31", "lumora sheet --help"},
        {{L"sheet", L"--size", L"1025", L"x"}, "--size does not take 1025", "lumora sheet --help"},
        {{L"sheet", L"--columns", L"0", L"x"}, "--columns does not take 0", "lumora sheet --help"},
        {{L"sheet", L"--columns=33", L"x"}, "--columns does not take 33", "lumora sheet --help"},
        {{L"sheet", L"--columns=all", L"x"}, "--columns does not take all", "lumora sheet --help"},
        {{L"doctor", L"--verbose"}, "there is no option --verbose here", "lumora doctor --help"},
        {{L"register", L"x"}, "this command takes no x", "lumora register --help"},
        {{L"register", L"--dll"}, "--dll needs a value", "lumora register --help"},
        {{L"unregister", L"--dll", L"x"}, "there is no option --dll here", "lumora unregister --help"},
    };
    for (const Row& row : rows)
    {
        const ToolRun run = RunAnywhere(row.arguments);
        EXPECT_EQ(run.exitCode, 2U) << row.complaint;
        EXPECT_THAT(run.output, IsEmpty());
        EXPECT_THAT(run.error, StartsWith(std::string("lumora: ") + row.complaint));
        EXPECT_THAT(run.error, HasSubstr(row.help));
    }
}

} // namespace
