#include "lumora/console/Utf8.h"

#include <gtest/gtest.h>

using Lumora::ToUtf8;

namespace {

TEST(Utf8, HasOneToFourBytesForACharacter)
{
    EXPECT_EQ(ToUtf8(L""), "");
    EXPECT_EQ(ToUtf8(L"Az~\x7F"), "Az~\x7F");
    EXPECT_EQ(ToUtf8(L"\u0080\u00E4\u07FF"), "\xC2\x80\xC3\xA4\xDF\xBF");
    EXPECT_EQ(ToUtf8(L"\u0800\u20AC\uFFFD"), "\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(L"\U00010000\U0001F52C\U0010FFFF"), "\xF0\x90\x80\x80\xF0\x9F\x94\xAC\xF4\x8F\xBF\xBF");
}

TEST(Utf8, KeepsNullCharacters)
{
    EXPECT_EQ(ToUtf8(std::wstring_view(L"a\0b", 3)), std::string("a\0b", 3));
}

TEST(Utf8, ReplacesHalvesOfSurrogatePairs)
{
    EXPECT_EQ(ToUtf8(L"\xD83D"), "\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(L"\xDD2C"), "\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(L"\xD83Dx"), "\xEF\xBF\xBDx");
    EXPECT_EQ(ToUtf8(L"\xDD2C\xD83D"), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(L"\xD83D\xD83D\xDD2C"), "\xEF\xBF\xBD\xF0\x9F\x94\xAC");
    EXPECT_EQ(ToUtf8(L"\xDBFF\xDFFF"), "\xF4\x8F\xBF\xBF");
}

} // namespace
