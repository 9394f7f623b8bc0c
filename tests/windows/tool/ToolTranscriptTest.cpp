#include "support/FileBytes.h"
#include "support/TestFolders.h"
#include "support/files/MrcFile.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/tool/ToolRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>

// A transcript in tests/transcripts is what a terminal shows: command lines after "$ ", what the tool prints,
// what it prints on standard error after "! ", and in brackets an exit code other than 0. At the end are the
// files that the commands have written, after "+ ". Times are written as 0, and hashes as HASH. With
// LUMORA_APPROVE=1 in the environment, these tests write the transcripts anew. Read what has changed in them.

namespace {

using Bytes = std::vector<uint8_t>;

const std::filesystem::path transcripts = TestFolder("source") / "tests" / "transcripts";

/// Three sections of 4 x 2 pixels, and who wrote them.
Bytes AcquiredStack(std::string_view application)
{
    return MrcFile()
        .Size(4, 2, 3)
        .Mode(6)
        .Version(20140)
        .ExtendedHeader("TAV ", AcquisitionHeader(1, application, ""))
        .Samples(Bytes(size_t{4} * 2 * 3 * 2))
        .Build();
}

/// The files that the transcripts name.
void WriteFiles(const TemporaryFolder& folder)
{
    const Bytes text(100, 'x');
    const Bytes good = GrayStack(1);
    folder.Write("good.mrc", good);
    folder.Write("stack.mrc", GrayStack(3));
    folder.Write("acquired.mrc", AcquiredStack("Scope"));
    // A tab, quotes and a backslash in the file; letters beyond ASCII in its name.
    folder.Write(L"\u00FC\u7535.mrc", AcquiredStack("a\t\"b\\c\" "));
    folder.Write("packed.mrc", MrcFile().Size(4, 2, 1).Mode(101).Samples(Bytes(4)).Build());
    folder.Write("text.mrc", text);
    // The header promises more than the file holds.
    folder.Write("cut.mrc", MrcFile().Size(4, 2, 1).Mode(6).Build());
    folder.Write("--json", good);
    const std::string names = "mixed/deep/d.st\r\n\nmissing.mrc\nmixed\\deep\\er\ngood.mrc";
    folder.Write("names.txt", Bytes(names.begin(), names.end()));
    const std::string separated("good.mrc\0.\\mixed\\b.mrc", 22);
    folder.Write("names.nul", Bytes(separated.begin(), separated.end()));
    for (const char* const name : {"mixed/b.mrc", "mixed/A.MRC", "mixed/scan.dat", "mixed/deep/er/c.rec",
                                   "mixed/deep/d.st", "mixed/mrc", "mixed/.mrc"})
        folder.Write(name, good);
    for (const char* const name : {"mixed/readme.txt", "mixed/deep/text.st", "none/readme.txt"})
        folder.Write(name, text);
}

/// The words of a command line; a word may stand in quotes.
std::vector<std::wstring> Words(std::string_view line)
{
    std::vector<std::wstring> words;
    while (!line.empty())
    {
        const bool isQuoted = line.front() == '"';
        const size_t end = std::min(line.find(isQuoted ? '"' : ' ', isQuoted ? 1 : 0), line.size());
        const std::string_view word = line.substr(isQuoted ? 1 : 0, end - (isQuoted ? 1 : 0));
        words.push_back(std::filesystem::path(std::u8string(word.begin(), word.end())).wstring());
        line.remove_prefix(std::min(end + (isQuoted ? 2 : 1), line.size()));
    }
    return words;
}

void AppendLines(std::string& transcript, const std::string& output, std::string_view prefix)
{
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
        transcript.append(prefix).append(line).append("\n");
}

/// The transcript of the same command lines, run now.
std::string RunAgain(const std::string& approved)
{
    const TemporaryFolder folder;
    WriteFiles(folder);
    const std::vector<std::string> before = folder.Files();
    // The names of a page's pictures depend on the full paths of the files.
    static const std::regex hash("-[0-9A-F]{8}(~2)?\\.png$");
    std::string transcript;
    std::istringstream lines(approved);
    for (std::string line; std::getline(lines, line);)
    {
        constexpr std::string_view prompt = "$ lumora";
        static const std::regex milliseconds("(\"milliseconds\": )[0-9]+");
        if (!line.starts_with(prompt))
            continue;
        const std::string_view arguments = std::string_view(line).substr(prompt.size());
        const ToolRun run(Words(arguments.substr(std::min<size_t>(arguments.size(), 1))), folder.Path());
        transcript += line + '\n';
        AppendLines(transcript, std::regex_replace(run.output, milliseconds, "$010"), "");
        AppendLines(transcript, run.error, "! ");
        if (run.exitCode != 0)
            transcript += '[' + std::to_string(run.exitCode) + "]\n";
    }
    for (const std::string& file : folder.Files())
    {
        if (!std::ranges::binary_search(before, file))
            transcript += "+ " + std::regex_replace(file, hash, "-HASH$1.png") + '\n';
    }
    return transcript;
}

std::string TextOf(const std::filesystem::path& file)
{
    const Bytes bytes = FileBytes(file);
    return {bytes.begin(), bytes.end()};
}

class ToolTranscript : public testing::TestWithParam<std::string>
{};

/// Compares a text that the tool has made with the one in the file, or writes it there.
void CompareWithApproved(const std::filesystem::path& file, const std::string& text,
                         const std::string& approved)
{
    EXPECT_EQ(text, approved);
    if (std::getenv("LUMORA_APPROVE") != nullptr)
        std::ofstream(file, std::ios::binary) << text;
}

TEST_P(ToolTranscript, IsTheApprovedOne)
{
    const std::filesystem::path file = transcripts / (GetParam() + ".txt");
    const std::string approved = TextOf(file);
    ASSERT_NE(approved, "");
    CompareWithApproved(file, RunAgain(approved), approved);
}

std::vector<std::string> Names()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(transcripts))
        names.push_back(entry.path().stem().string());
    std::ranges::sort(names);
    return names;
}

INSTANTIATE_TEST_SUITE_P(Of, ToolTranscript, testing::ValuesIn(Names()),
                         [](const auto& name) { return name.param; });

// The chapter of the guide that describes all options is what the tool itself says.
TEST(ToolHelp, IsAChapterOfTheGuide)
{
    const TemporaryFolder folder;
    std::string chapter = "# All commands and options\n";
    for (const wchar_t* const command :
         {L"", L"info", L"render", L"sheet", L"merge", L"doctor", L"register", L"unregister"})
    {
        const std::wstring name = command;
        const ToolRun run(name.empty() ? std::vector<std::wstring>{L"--help"}
                                       : std::vector<std::wstring>{name, L"--help"},
                          folder.Path());
        EXPECT_EQ(run.exitCode, 0U);
        EXPECT_EQ(run.error, "");
        chapter += "\n## lumora" + std::string(name.empty() ? "" : " ") +
                   std::filesystem::path(name).string() + "\n\n";
        std::istringstream lines(run.output);
        for (std::string line; std::getline(lines, line);)
            chapter += (line.empty() ? "" : "    ") + line + '\n';
    }
    const std::filesystem::path file = TestFolder("source") / "docs" / "commands.md";
    CompareWithApproved(file, chapter, TextOf(file));
}

} // namespace
