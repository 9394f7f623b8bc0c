#include "lumora/shards/Shard.h"

#include "lumora/shards/ShardMark.h"

#include <gtest/gtest.h>

#include <string>

using Lumora::Shard;
using Lumora::ShardMark;
using Lumora::SourceFile;

namespace {

TEST(Shard, IsTwoNumbers)
{
    const std::optional<Shard> shard = Shard::Parse(L"3/8");
    ASSERT_TRUE(shard);
    EXPECT_EQ(shard->number, 3U);
    EXPECT_EQ(shard->count, 8U);
    EXPECT_EQ(shard->Text(), L"3/8");
    EXPECT_TRUE(Shard::Parse(L"1/1"));
    EXPECT_TRUE(Shard::Parse(L"500/500"));
    for (const wchar_t* const text : {L"", L"/", L"3", L"3/", L"/8", L"0/8", L"9/8", L"1/0", L"0/0", L"1/501",
                                      L"-1/8", L"1/-8", L"1/8/2", L"1,8", L" 1/8", L"1/8 ", L"x/8", L"1/x"})
        EXPECT_FALSE(Shard::Parse(text)) << std::wstring(text).size();
}

TEST(Shard, HasEveryNthFileAndTogetherAll)
{
    constexpr Shard third = {3, 8};
    for (uint64_t index = 0; index < 100; ++index)
    {
        EXPECT_EQ(third.Has(index), index % 8 == 2);
        int owners = 0;
        for (uint32_t number = 1; number <= 7; ++number)
            owners += Shard{number, 7}.Has(index) ? 1 : 0;
        EXPECT_EQ(owners, 1);
    }
    EXPECT_TRUE(Shard().Has(0));
    EXPECT_TRUE(Shard().Has(1));
}

ShardMark MarkOf(const std::vector<SourceFile>& files)
{
    ShardMark mark = {.shard = {3, 8}};
    for (const SourceFile& file : files)
        mark.Add(file);
    return mark;
}

TEST(ShardMark, GivesItsTextAndTakesNoOther)
{
    const ShardMark mark = {{3, 8}, 10'000, 4'294'967'295};
    EXPECT_EQ(mark.Text(), LR"({"shard": "3/8", "files": 10000, "hash": 4294967295})");
    const std::string text = R"({"shard": "3/8", "files": 10000, "hash": 4294967295})";
    const std::optional<ShardMark> read = ShardMark::Parse(text);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->Text(), mark.Text());
    for (size_t length = 0; length < text.size(); ++length)
        EXPECT_FALSE(ShardMark::Parse(text.substr(0, length))) << length;
    for (const char* const other :
         {R"({"shard": "9/8", "files": 10000, "hash": 1})", R"({"shard": "3/8", "files": -1, "hash": 1})",
          R"({"shard": "3/8", "files": 010, "hash": 1})",
          R"({"shard": "3/8", "files": 1, "hash": 4294967296})",
          R"({"shard": "3/8", "files": 1, "hash": 1} )",
          R"({"shard": "3/8", "files": 1, "x": 2, "hash": 1})"})
        EXPECT_FALSE(ShardMark::Parse(other)) << other;
}

TEST(ShardMark, DiffersForDifferentLists)
{
    const SourceFile a = {L"in\\a.mrc", L"C:\\in\\a.mrc", L"", {}};
    const SourceFile b = {L"in\\sub\\b.mrc", L"C:\\in\\sub\\b.mrc", L"sub", {}};
    const ShardMark both = MarkOf({a, b});
    EXPECT_TRUE(both.IsOfSameList(MarkOf({a, b})));
    EXPECT_FALSE(both.IsOfSameList(MarkOf({b, a})));
    EXPECT_FALSE(both.IsOfSameList(MarkOf({a})));
    EXPECT_FALSE(both.IsOfSameList(MarkOf({a, b, b})));
    SourceFile elsewhere = b;
    elsewhere.subfolder = L"sup";
    EXPECT_FALSE(both.IsOfSameList(MarkOf({a, elsewhere})));
    EXPECT_FALSE(MarkOf({{L"ab", L"", L"", {}}, {L"c", L"", L"", {}}})
                     .IsOfSameList(MarkOf({{L"a", L"", L"", {}}, {L"bc", L"", L"", {}}})));
}

TEST(ShardMark, IsTheSameWhereverAMachineSeesTheFolder)
{
    const ShardMark one = MarkOf({{L"D:\\in\\sub\\b.mrc", L"D:\\in\\sub\\b.mrc", L"sub\\deep", {}}});
    const ShardMark other = MarkOf({{L"/data/in/sub/b.mrc", L"/data/in/sub/b.mrc", L"sub/deep", {}}});
    EXPECT_TRUE(one.IsOfSameList(other));
}

} // namespace
