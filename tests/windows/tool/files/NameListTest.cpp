#include "lumora/files/NameList.h"

#include "lumora/console/Failure.h"
#include "windows/clients/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

using Lumora::Failure;
using Lumora::NameList;
using testing::ElementsAre;
using testing::IsEmpty;

using Separator = Lumora::NameList::Separator;

namespace {

using Names = std::vector<std::wstring>;

Names AllOf(NameList list)
{
    Names names;
    while (std::optional<std::wstring> name = list.Next())
        names.push_back(*name);
    return names;
}

/// The names in a file that holds these bytes.
Names NamesIn(std::string_view bytes, Separator separator = Separator::Line)
{
    const TemporaryFolder folder;
    const std::filesystem::path file =
        folder.Write("names", std::vector<uint8_t>(bytes.begin(), bytes.end()));
    return AllOf(NameList(file.wstring(), separator));
}

/// The text as little-endian UTF-16 with a byte-order mark.
std::string Wide(const std::u16string& text)
{
    std::string bytes = "\xFF\xFE";
    for (const char16_t character : text)
    {
        bytes += static_cast<char>(character & 0xFF);
        bytes += static_cast<char>(character >> 8);
    }
    return bytes;
}

std::wstring FailureWith(const std::function<void()>& work)
{
    return Lumora::FailureOf(work).value_or(L"no failure");
}

TEST(NameList, TakesWhatIsNotUtf8ForTextOfTheTerminal)
{
    wchar_t expected[2] = {};
    ASSERT_EQ(MultiByteToWideChar(CP_OEMCP, 0, "\x81", 1, expected, 2), 1);
    EXPECT_THAT(NamesIn("a\x81.mrc\n\xC3\xBC.mrc\n"),
                ElementsAre(std::wstring(L"a") + expected[0] + L".mrc", L"\u00FC.mrc"));
}

TEST(NameList, RefusesTheOtherUtf16)
{
    EXPECT_THAT(
        FailureWith([] { NamesIn("\xFE\xFF\0a"); }),
        testing::EndsWith(L": this is big-endian UTF-16; UTF-8 and little-endian UTF-16 are understood"));
}

TEST(NameList, HasANameInEachLine)
{
    EXPECT_THAT(NamesIn("a.mrc\nb c.mrc\n"), ElementsAre(L"a.mrc", L"b c.mrc"));
    EXPECT_THAT(NamesIn("a.mrc\r\nb.mrc\r\n"), ElementsAre(L"a.mrc", L"b.mrc"));
    EXPECT_THAT(NamesIn("a.mrc\nb.mrc"), ElementsAre(L"a.mrc", L"b.mrc")) << "no line end at the end";
    EXPECT_THAT(NamesIn("a.mrc\r\nb.mrc\r"), ElementsAre(L"a.mrc", L"b.mrc"));
    EXPECT_THAT(NamesIn(" a.mrc \n"), ElementsAre(L" a.mrc ")) << "a space belongs to the name";
}

TEST(NameList, PassesOverEmptyLines)
{
    EXPECT_THAT(NamesIn(""), IsEmpty());
    EXPECT_THAT(NamesIn("\n\r\n\n"), IsEmpty());
    EXPECT_THAT(NamesIn("\n\na\n\r\n\nb\n\n"), ElementsAre(L"a", L"b"));
}

TEST(NameList, ReadsUtf8WithAndWithoutAMark)
{
    EXPECT_THAT(NamesIn("\xC3\xBC\xE7\x94\xB5\nb\n"), ElementsAre(L"\u00FC\u7535", L"b"));
    EXPECT_THAT(NamesIn("\xEF\xBB\xBF\xC3\xBC\nb\n"), ElementsAre(L"\u00FC", L"b"));
    EXPECT_THAT(NamesIn("\xEF\xBB\xBF"), IsEmpty());
    EXPECT_THAT(NamesIn("a"), ElementsAre(L"a")) << "shorter than a mark";
    EXPECT_THAT(NamesIn("\xF0\x9F\x94\xAC\n"), ElementsAre(std::wstring({0xD83D, 0xDD2C})));
}

TEST(NameList, ReadsUtf16AsPowerShellWritesIt)
{
    EXPECT_THAT(NamesIn(Wide(u"a.mrc\r\n\u00FC\u7535.mrc\r\n")), ElementsAre(L"a.mrc", L"\u00FC\u7535.mrc"));
    EXPECT_THAT(NamesIn(Wide(u"\r\n\na")), ElementsAre(L"a"));
    EXPECT_THAT(NamesIn(Wide(u"")), IsEmpty());
    // Bytes of these letters are those of a line end.
    EXPECT_THAT(NamesIn(Wide(u"\u0A0A\u010A\u0A00x\n\u0D0Db")),
                ElementsAre(L"\u0A0A\u010A\u0A00x", L"\u0D0Db"));
    EXPECT_THAT(NamesIn(Wide(std::u16string(u"a\0\u0100\r\n\0\0b", 8)), Separator::Nul),
                ElementsAre(L"a", L"\u0100\r\n", L"b"));
}

TEST(NameList, TakesLineEndsAsPartOfNamesBetweenNuls)
{
    EXPECT_THAT(NamesIn({"a\r\nb\0\0c\r\0\nd", 11}, Separator::Nul), ElementsAre(L"a\r\nb", L"c\r", L"\nd"));
    EXPECT_THAT(NamesIn({"\xEF\xBB\xBF\xC3\xBC\0", 6}, Separator::Nul), ElementsAre(L"\u00FC"));
    EXPECT_THAT(NamesIn({"a\0b\n", 4}), ElementsAre(std::wstring(L"a\0b", 3)));
}

TEST(NameList, IsAsLongAsItWants)
{
    std::string bytes;
    Names expected;
    for (int number = 0; number < 20'000; ++number)
    {
        bytes += std::to_string(number) + ".mrc\r\n";
        expected.push_back(std::to_wstring(number) + L".mrc");
    }
    EXPECT_EQ(NamesIn(bytes), expected);
}

TEST(NameList, RefusesANameThatIsLongerThanAnyPath)
{
    const std::string longest(131'072, 'a');
    EXPECT_THAT(NamesIn(longest + '\n'), ElementsAre(std::wstring(131'072, L'a')));

    const TemporaryFolder folder;
    const std::string text = "b\n" + longest + "a\nc";
    const std::wstring file = folder.Write("names", std::vector<uint8_t>(text.begin(), text.end())).wstring();
    NameList list(file, Separator::Line);
    EXPECT_EQ(list.Next(), L"b");
    EXPECT_EQ(FailureWith([&list] { static_cast<void>(list.Next()); }),
              file + L": a name is longer than any path");
}

TEST(NameList, SaysThatAFileIsMissing)
{
    const TemporaryFolder folder;
    const std::wstring file = (folder.Path() / "none").wstring();
    EXPECT_EQ(FailureWith([&file] { NameList(file, Separator::Line); }),
              file + L": the file was not found (ERROR_FILE_NOT_FOUND)");
}

TEST(NameList, TakesTheStandardInputHoweverItArrives)
{
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    ASSERT_TRUE(CreatePipe(&reading, &writing, nullptr, 0));
    const HANDLE before = GetStdHandle(STD_INPUT_HANDLE);
    SetStdHandle(STD_INPUT_HANDLE, reading);
    std::thread writer([writing] {
        for (const char byte : std::string("\xEF\xBB\xBF"
                                           "a.mrc\r\n\xC3\xBC"))
        {
            DWORD written = 0;
            WriteFile(writing, &byte, 1, &written, nullptr);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        CloseHandle(writing);
    });
    EXPECT_THAT(AllOf(NameList(L"-", Separator::Line)), ElementsAre(L"a.mrc", L"\u00FC"));
    writer.join();
    SetStdHandle(STD_INPUT_HANDLE, before);
    CloseHandle(reading);
}

} // namespace
