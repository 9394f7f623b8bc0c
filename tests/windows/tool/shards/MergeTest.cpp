#include "support/gray/GrayStack.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/tool/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

using Arguments = std::vector<std::wstring>;

Arguments operator+(Arguments left, const Arguments& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Bytes BytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

std::string TextOf(const Bytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

/// The lines without the times that the work took.
std::string WithoutTimes(const std::string& lines)
{
    static const std::regex milliseconds("(\"milliseconds\": )[0-9]+");
    return std::regex_replace(lines, milliseconds, "$010");
}

/// A folder "in" with files that can be shown and files that cannot, some of which have one name.
class Merge : public testing::Test
{
protected:
    Merge()
    {
        for (const char* const name :
             {"a.mrc", "B.mrc", "deep/c.mrc", "deep/er/d.mrc", "deep/er/scan", "e.st", "e.mrc", "deep/c.st"})
            folder.Write(std::string("in/") + name, GrayStack(2));
        folder.Write("in/cut.mrc", Bytes(100));
        folder.Write("in/deep/readme.txt", Bytes(100, 'x'));
    }

    [[nodiscard]] ToolRun Run(const Arguments& arguments) const { return {arguments, folder.Path()}; }

    /// A name that stands for none, a file that is named twice, and a pattern.
    static Arguments Sources() { return {L"missing.mrc", L"in", L"in\\a.mrc", L"in\\*.st"}; }

    /// The lines of each shard in a file of its own.
    void WriteLines(int shards) const
    {
        for (int number = 1; number <= shards; ++number)
        {
            const std::wstring shard = std::to_wstring(number) + L'/' + std::to_wstring(shards);
            const ToolRun run = Run(Arguments{L"info", L"--jsonl", L"--shard", shard} + Sources());
            folder.Write("part" + std::to_string(number) + ".jsonl", BytesOf(run.output));
        }
    }

    /// The failure of a merge of these files, after which nothing has changed.
    [[nodiscard]] std::string Refusal(const Arguments& shards) const
    {
        const std::vector<std::string> before = folder.Files();
        const ToolRun run = Run(Arguments{L"merge"} + shards);
        EXPECT_EQ(run.exitCode, 1U);
        EXPECT_THAT(run.output, IsEmpty());
        EXPECT_EQ(folder.Files(), before);
        return run.error;
    }

    const TemporaryFolder folder;
};

TEST_F(Merge, GivesTheLinesOfAnUndividedRun)
{
    const std::string whole = Run(Arguments{L"info", L"--jsonl"} + Sources()).output;
    // With more shards than files, some are empty.
    for (const int shards : {2, 13})
    {
        WriteLines(shards);
        const ToolRun run = Run({L"merge", L"-o", L"whole\\all.jsonl", L"part*.jsonl"});
        EXPECT_EQ(run.exitCode, 0U) << run.error;
        EXPECT_EQ(run.output, "whole\\all.jsonl\n");
        EXPECT_EQ(WithoutTimes(TextOf(folder.Read("whole/all.jsonl"))), WithoutTimes(whole)) << shards;
        for (int number = 1; number <= shards; ++number)
            std::filesystem::remove(folder.Path() / ("part" + std::to_string(number) + ".jsonl"));
    }
}

TEST_F(Merge, GivesThePageOfAnUndividedRun)
{
    for (const Arguments& options :
         {Arguments{L"sheet", L"--html"}, Arguments{L"sheet", L"--html", L"--only-readable"}})
    {
        EXPECT_EQ(Run(options + Arguments{L"-o", L"whole"} + Sources()).exitCode, 1U);
        // The files that are named twice are in different shards.
        for (const wchar_t* const shard : {L"2/4", L"1/4", L"4/4", L"3/4"})
            EXPECT_NE(Run(options + Arguments{L"--shard", shard, L"-o", L"parts"} + Sources()).exitCode, 2U);
        const ToolRun run = Run({L"merge", L"parts\\index-3-of-4.html", L"parts\\index-1*",
                                 L"parts\\index-4*", L"parts\\index-2*"});
        EXPECT_EQ(run.exitCode, 0U) << run.error;
        EXPECT_EQ(run.output, "parts\\index.html\n");
        EXPECT_EQ(TextOf(folder.Read("parts/index.html")), TextOf(folder.Read("whole/index.html")));
        std::vector<std::string> pictures;
        for (const std::string& file : folder.Files())
        {
            if (!file.starts_with("whole/pictures/"))
                continue;
            pictures.push_back(file);
            EXPECT_EQ(folder.Read("parts" + file.substr(5)), folder.Read(file)) << file;
        }
        EXPECT_EQ(pictures.size(), 10U);
    }
}

TEST_F(Merge, GivesTheLinesOfRenderToo)
{
    const std::string whole = Run(Arguments{L"render", L"--jsonl", L"-o", L"out"} + Sources()).output;
    EXPECT_THAT(whole, HasSubstr("which is the picture of in\\\\"));
    std::vector<std::string> pictures = folder.Files();
    for (const std::string& file : pictures)
    {
        if (file.starts_with("out/"))
            std::filesystem::remove(folder.Path() / file);
    }
    for (const wchar_t* const number : {L"1", L"2"})
    {
        const ToolRun run =
            Run(Arguments{L"render", L"--jsonl", L"-o", L"out", L"--shard", number + std::wstring(L"/2")} +
                Sources());
        folder.Write(std::wstring(L"part") + number, BytesOf(run.output));
    }
    EXPECT_EQ(pictures.size() + 2, folder.Files().size());
    EXPECT_EQ(Run({L"merge", L"part1", L"part2"}).output, "merged.jsonl\n");
    EXPECT_EQ(WithoutTimes(TextOf(folder.Read("merged.jsonl"))), WithoutTimes(whole));
}

TEST_F(Merge, ReplacesAnEarlierMergeAndNothingElse)
{
    WriteLines(2);
    const Arguments merge = {L"merge", L"-o", L"all", L"part1.jsonl", L"part2.jsonl"};
    folder.Write("all", BytesOf("{\"path\": \"older\"}\n"));
    EXPECT_EQ(Run(merge).exitCode, 0U);
    const Bytes whole = folder.Read("all");
    EXPECT_THAT(TextOf(whole), StartsWith("{\"path\": \"missing.mrc\""));
    folder.Write("all", BytesOf("my notes\n"));
    EXPECT_THAT(Refusal({L"-o", L"all", L"part1.jsonl", L"part2.jsonl"}),
                HasSubstr("there is a file of another kind of the name all"));
    EXPECT_EQ(TextOf(folder.Read("all")), "my notes\n");
    EXPECT_THAT(Refusal({L"-o", L"PART2.jsonl", L"part1.jsonl", L"part2.jsonl"}),
                HasSubstr("PART2.jsonl is one of the shards; -o names another file"));
}

TEST_F(Merge, RefusesShardsThatAreMissingOrTwice)
{
    WriteLines(3);
    EXPECT_EQ(Refusal({L"part2.jsonl"}), "lumora: these shards are missing: 1/3, 3/3\n");
    EXPECT_EQ(Refusal({L"part2.jsonl", L"none.jsonl"}),
              "lumora: none.jsonl: the file was not found (ERROR_FILE_NOT_FOUND)\n");
    folder.Write("copy", folder.Read("part2.jsonl"));
    EXPECT_EQ(Refusal({L"part1.jsonl", L"part2.jsonl", L"part3.jsonl", L"copy"}),
              "lumora: part2.jsonl and copy are the same shard, 2/3\n");
    // A pattern may also match the whole.
    EXPECT_EQ(Run({L"merge", L"-o", L"part.jsonl", L"part*.jsonl"}).exitCode, 0U);
    EXPECT_EQ(Refusal({L"part*.jsonl"}),
              "lumora: part.jsonl: this is no shard, or its end is missing; run the shard again\n");
}

TEST_F(Merge, RefusesAShardWithALineTooFewOrTooMany)
{
    WriteLines(2);
    const std::string whole = TextOf(folder.Read("part2.jsonl"));
    const size_t second = whole.find('\n') + 1;
    folder.Write("few", BytesOf(whole.substr(second)));
    EXPECT_EQ(Refusal({L"part1.jsonl", L"few"}),
              "lumora: few: this is not a whole shard; run the shard again\n");
    folder.Write("many", BytesOf(whole.substr(0, second) + whole));
    EXPECT_EQ(Refusal({L"part1.jsonl", L"many"}),
              "lumora: many: there is more in this shard than its files; run the shard again\n");
}

TEST_F(Merge, RefusesShardsOfDifferentRuns)
{
    WriteLines(2);
    folder.Write("third",
                 BytesOf(Run(Arguments{L"info", L"--jsonl", L"--shard", L"3/3"} + Sources()).output));
    EXPECT_EQ(Refusal({L"part1.jsonl", L"third"}), "lumora: part1.jsonl and third are shards 1/2 and 3/3\n");

    // A file comes into the folder while the shards run.
    folder.Write("in/f.mrc", GrayStack(1));
    folder.Write("later",
                 BytesOf(Run(Arguments{L"info", L"--jsonl", L"--shard", L"2/2"} + Sources()).output));
    EXPECT_EQ(Refusal({L"part1.jsonl", L"later"}),
              "lumora: part1.jsonl and later are of different lists, of 12 and 13 files\n");

    for (const wchar_t* const size : {L"100", L"200"})
        (void)Run({L"sheet", L"--html", L"--size", size, L"--shard", size[0] + std::wstring(L"/2"), L"-o",
                   L"page", L"in"});
    EXPECT_EQ(Refusal({L"page\\index-1-of-2.html", L"page\\index-2-of-2.html"}),
              "lumora: page\\index-1-of-2.html and page\\index-2-of-2.html are pages with different titles "
              "or sizes "
              "of pictures\n");
    EXPECT_EQ(Refusal({L"part1.jsonl", L"page\\index-2-of-2.html"}),
              "lumora: part1.jsonl and page\\index-2-of-2.html are not of the same kind\n");
}

TEST_F(Merge, KeepsAPageWithItsPictures)
{
    (void)Run(Arguments{L"sheet", L"--html", L"--shard", L"1/1", L"-o", L"page"} + Sources());
    EXPECT_EQ(
        Refusal({L"-o", L"other\\index.html", L"page\\index-1-of-1.html"}),
        "lumora: other\\index.html would not be in the folder of page\\index-1-of-1.html, whose pictures it "
        "shows\n");
    EXPECT_EQ(Run({L"merge", L"-o", L"in\\..\\PAGE\\x.html", L"page\\index-1-of-1.html"}).exitCode, 0U);
}

TEST_F(Merge, MakesNoPageWithoutFiles)
{
    for (const wchar_t* const shard : {L"1/2", L"2/2"})
    {
        const ToolRun run =
            Run({L"sheet", L"--html", L"--only-readable", L"--shard", shard, L"-o", L"page", L"in\\cut.mrc"});
        EXPECT_EQ(run.output, "page\\index-" + std::string(1, static_cast<char>(*shard)) + "-of-2.html\n");
    }
    EXPECT_EQ(Refusal({L"page\\*.html"}), "lumora: there are no files for a sheet\n");
}

TEST_F(Merge, NamesTheSheetAfterTheShard)
{
    const ToolRun run = Run({L"sheet", L"--rows", L"1", L"--columns", L"2", L"--shard", L"1/2", L"in"});
    EXPECT_EQ(run.output, "sheet-1-of-2-1.png\nsheet-1-of-2-2.png\nsheet-1-of-2-3.png\n");
    const ToolRun empty = Run({L"sheet", L"--shard", L"2/2", L"in\\a.mrc"});
    EXPECT_EQ(empty.exitCode, 0U) << empty.error;
    EXPECT_THAT(empty.output, IsEmpty());
}

} // namespace
