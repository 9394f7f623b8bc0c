#include "support/FileBytes.h"
#include "support/TestFolders.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/tool/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <span>

using testing::HasSubstr;

namespace {

using Arguments = std::vector<std::wstring>;

/// The samples, the first half of each, and files that are none of Lumora's.
void WriteFiles(const TemporaryFolder& folder)
{
    for (const auto& entry : std::filesystem::directory_iterator(TestFolder("source") / "samples"))
    {
        const Bytes whole = FileBytes(entry.path());
        const std::string name = entry.path().filename().string();
        folder.Write("in\\" + name, whole);
        folder.Write("in\\cut\\" + name, std::span(whole).first(whole.size() / 2));
    }
    folder.Write("in\\empty.mrc", Bytes());
    folder.Write("in\\text.mrc", Bytes(100, 'x'));
    folder.Write("in\\readme.txt", Bytes(100, 'x'));
    folder.Write("stack.mrc", GrayStack(3));
}

/// Runs a command on all files. Returns all that it has said.
std::string Said(const TemporaryFolder& folder, const Arguments& command, const wchar_t* jobs)
{
    Arguments arguments = command;
    arguments.insert(arguments.end(),
                     {L"--jobs", jobs, L"stack.mrc", L"in", L"missing.mrc", L"in\\cut\\..\\*.h5", L"none*"});
    const ToolRun run(arguments, folder.Path());
    static const std::regex milliseconds("(\"milliseconds\": )[0-9]+");
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_THAT(run.error, HasSubstr("lumora: in\\text.mrc: "));
    EXPECT_THAT(run.error, HasSubstr("lumora: in\\cut\\"));
    EXPECT_THAT(run.error, HasSubstr("lumora: missing.mrc: the file was not found"));
    EXPECT_THAT(run.error, HasSubstr("lumora: none*: no file has such a name"));
    return std::to_string(run.exitCode) + '\n' + std::regex_replace(run.output, milliseconds, "$010") +
           run.error;
}

class Jobs : public testing::TestWithParam<Arguments>
{};

TEST_P(Jobs, ChangeNothingButTheTime)
{
    const TemporaryFolder alone;
    const TemporaryFolder together;
    WriteFiles(alone);
    WriteFiles(together);
    const size_t before = alone.Files().size();
    EXPECT_EQ(Said(together, GetParam(), L"3"), Said(alone, GetParam(), L"1"));
    const std::vector<std::string> files = alone.Files();
    EXPECT_EQ(together.Files(), files);
    for (const std::string& file : files)
        EXPECT_TRUE(together.Read(file) == alone.Read(file)) << file;
    EXPECT_EQ(files.size() > before, GetParam().front() != L"info") << "only info writes no files";
}

INSTANTIATE_TEST_SUITE_P(Of, Jobs,
                         testing::Values(Arguments{L"info", L"--verbose"}, Arguments{L"info", L"--json"},
                                         Arguments{L"info", L"--jsonl"},
                                         Arguments{L"render", L"--verbose", L"--frame", L"all", L"--size",
                                                   L"64", L"-o", L"out"},
                                         Arguments{L"render", L"--jsonl", L"--size", L"32", L"-o", L"out"},
                                         Arguments{L"sheet", L"--size", L"40", L"-o", L"sheet.png"}));

} // namespace
