#include "lumora/console/Failure.h"
#include "lumora/shards/ShardFile.h"
#include "lumora/sheet/GalleryWriter.h"
#include "support/ByteWriter.h"
#include "windows/clients/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>

using Lumora::ShardFile;
using testing::EndsWith;
using testing::HasSubstr;

namespace {

const std::string lines = "{\"path\": \"a\"}\n{\"path\": \"b\"}\n";
const std::string mark = R"({"shard": "1/1", "files": 2, "hash": 7})";

/// The page of a shard with a file that is shown, one that cannot be, and one that is left out.
std::string Page()
{
    const TemporaryFolder folder;
    Lumora::GalleryWriter writer((folder.Path() / "index.html").native(), L"title", 200);
    Lumora::GalleryEntry entry;
    entry.name = L"a";
    entry.source = L"</ul>\n</li>\n<!-- left out -->\n";
    entry.picture = L"pictures/a.png";
    writer.Add(entry);
    entry.picture = L"";
    entry.failure = L"a\nb";
    writer.Add(entry);
    writer.LeaveOut();
    writer.Finish(LR"({"shard": "1/1", "files": 3, "hash": 7})");
    const Bytes bytes = folder.Read("index.html");
    return {bytes.begin(), bytes.end()};
}

/// What the file holds up to its mark, read as merge does it, or the failure.
std::string ReadOf(const TemporaryFolder& folder, const std::string& text)
{
    const std::filesystem::path path = folder.Write("shard", Bytes(text.begin(), text.end()));
    std::string read;
    const auto failure = Lumora::FailureOf([&] {
        ShardFile file({L"shard", path.wstring(), L"", {}});
        read = file.Head();
        for (uint32_t index = 0; index < file.Mark().files; ++index)
            read += file.Next();
        file.RequireEnd();
    });
    return failure ? std::filesystem::path(*failure).string() : read;
}

bool IsRefused(const std::string& read)
{
    return read.starts_with("shard: ") && read.ends_with("; run the shard again");
}

TEST(ShardFile, GivesWhatTheShardHasWritten)
{
    const TemporaryFolder folder;
    EXPECT_EQ(ReadOf(folder, lines + mark + '\n'), lines);
    const std::string page = Page();
    const size_t end = page.find("<!-- left out -->\n</ul>\n");
    ASSERT_NE(end, std::string::npos);
    EXPECT_EQ(ReadOf(folder, page), page.substr(0, end));
    EXPECT_EQ(ReadOf(folder, R"({"shard": "1/1", "files": 0, "hash": 7})"
                             "\n"),
              "");
}

TEST(ShardFile, TakesTheLinesThatPowerShellHasWritten)
{
    const TemporaryFolder folder;
    EXPECT_EQ(ReadOf(folder, "{\"path\": \"a\"}\r\n{\"path\": \"b\"}\r\n" + mark + "\r\n"), lines);
    EXPECT_EQ(ReadOf(folder, "\xFF\xFE{"),
              "shard: this is UTF-16, as Windows PowerShell writes what lumora prints; "
              "run the shard in cmd");
}

TEST(ShardFile, RefusesEveryPartOfAShard)
{
    const TemporaryFolder folder;
    const std::string whole = lines + mark + '\n';
    for (size_t length = 0; length < whole.size(); ++length)
    {
        EXPECT_TRUE(IsRefused(ReadOf(folder, whole.substr(0, length)))) << length;
        if (length > 0)
            EXPECT_TRUE(IsRefused(ReadOf(folder, whole.substr(length)))) << length;
    }
    const std::string page = Page();
    for (size_t length = 0; length < page.size(); length += 101)
        EXPECT_TRUE(IsRefused(ReadOf(folder, page.substr(0, length)))) << length;
}

TEST(ShardFile, RefusesWhatIsTooMuchOrNotOurs)
{
    const TemporaryFolder folder;
    const std::string end = mark + '\n';
    const std::string foreign = "my notes, which are not from Lumora\n";
    for (const std::string& text :
         {foreign, foreign + end, lines + foreign + end, lines + lines + end, lines + end + end,
          lines + mark + ' ' + '\n', lines.substr(0, 20) + '\n' + end, std::string(1000, '\0')})
        EXPECT_TRUE(IsRefused(ReadOf(folder, text))) << text;

    const std::string page = Page();
    const std::string entry = page.substr(page.find("<li "), page.find("</li>\n") + 6 - page.find("<li "));
    std::string more = page;
    more.insert(more.find("</ul>\n<"), entry);
    std::string unlike = page;
    unlike.insert(unlike.find("</main>"), " ");
    std::string notInList = page;
    notInList.insert(notInList.find("<li "), "\n");
    for (const std::string& text : {more, unlike, notInList})
        EXPECT_TRUE(IsRefused(ReadOf(folder, text)));
}

TEST(ShardFile, ReadsAsManyShardsAsThereMayBe)
{
    const TemporaryFolder folder;
    std::vector<std::unique_ptr<ShardFile>> files;
    for (uint32_t number = 1; number <= Lumora::Shard::mostShards; ++number)
    {
        const std::string text = "{\"path\": \"" + std::to_string(number) + "\"}\n{\"shard\": \"" +
                                 std::to_string(number) + "/500\", \"files\": 500, \"hash\": 7}\n";
        const std::filesystem::path path =
            folder.Write(std::to_string(number), Bytes(text.begin(), text.end()));
        files.push_back(std::make_unique<ShardFile>(Lumora::SourceFile{L"shard", path.wstring(), L"", {}}));
    }
    // The whole is one more.
    const std::ofstream whole(folder.Path() / "whole");
    EXPECT_TRUE(whole);
    EXPECT_EQ(files.front()->Next(), "{\"path\": \"1\"}\n");
    EXPECT_EQ(files.back()->Next(), "{\"path\": \"500\"}\n");
}

} // namespace
