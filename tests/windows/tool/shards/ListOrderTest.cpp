#include "lumora/files/ListOrder.h"

#include "lumora/files/FileSource.h"
#include "windows/clients/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using Lumora::ListOrder;
using testing::ElementsAre;

namespace {

TEST(ListOrder, IsTheSameOnEveryMachine)
{
    const std::vector<std::wstring> ordered = {
        L"",           L"-a",     L"10",    L"9",
        L"_", // before all letters, which count as small ones
        L"A", // beside "a", as on Linux
        L"a",          L"A.mrc",  L"a.mrc", L"a.mrcs", L"B", L"Z",
        L"\u00C4", // other letters keep their case
        L"\u00E4",     L"\uFF21",
        L"\U00010400", // beyond the basic plane, where UTF-16 has surrogates: 0xD801
    };
    std::vector<std::wstring> shuffled = ordered;
    std::ranges::reverse(shuffled);
    std::sort(shuffled.begin(), shuffled.end(), ListOrder());
    EXPECT_EQ(shuffled, ordered);
}

TEST(ListOrder, TellsAllNamesApart)
{
    const std::wstring names[] = {L"a", L"A", L"aa", L"aA", L"\xD800", L"\xDFFF", L"\uFFFD", L""};
    for (const std::wstring& left : names)
    {
        for (const std::wstring& right : names)
            EXPECT_EQ(ListOrder()(left, right) + ListOrder()(right, left), left == right ? 0 : 1);
    }
}

TEST(ListOrder, IsThatOfAFolder)
{
    const TemporaryFolder folder;
    for (const wchar_t* const name :
         {L"\U00010400.mrc", L"b.mrc", L"\uFF21.mrc", L"C.mrc", L"_.mrc", L"a.mrc"})
        folder.Write(name, std::vector<uint8_t>(1));
    std::vector<std::wstring> names;
    for (const Lumora::SourceFile& file :
         Lumora::AllFilesOf({{folder.Path().wstring()}, nullptr, nullptr}).files)
        names.push_back(std::filesystem::path(file.name).filename().wstring());
    EXPECT_THAT(names, ElementsAre(L"_.mrc", L"a.mrc", L"b.mrc", L"C.mrc", L"\uFF21.mrc", L"\U00010400.mrc"));
}

// While one shard looks for files, another writes its pictures, perhaps beside them.
TEST(FileSource, PassesOverTemporaryFiles)
{
    const TemporaryFolder folder;
    for (const char* const name : {"a.png.lumora-part", "sheet.png.123.lumora-rows", "lumora-part"})
        folder.Write(name, std::vector<uint8_t>(1));
    std::vector<std::wstring> opened;
    const auto isReadable = [&opened](const std::wstring& path) {
        opened.push_back(std::filesystem::path(path).filename().wstring());
        return true;
    };
    EXPECT_EQ(Lumora::AllFilesOf({{folder.Path().wstring()}, nullptr, isReadable}).files.size(), 1U);
    EXPECT_THAT(opened, ElementsAre(L"lumora-part"));
}

} // namespace
