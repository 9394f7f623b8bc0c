#include "lumora/sheet/Html.h"

#include <gtest/gtest.h>

using Lumora::HtmlText;
using Lumora::RelativeUrl;

namespace {

TEST(HtmlText, EscapesWhatHasAMeaningInHtml)
{
    EXPECT_EQ(HtmlText(L"<img src=x onerror=\"run()\">"), "&lt;img src=x onerror=&quot;run()&quot;&gt;");
    EXPECT_EQ(HtmlText(L"it's & so on"), "it&#39;s &amp; so on");
    EXPECT_EQ(HtmlText(L"&amp;"), "&amp;amp;");
    EXPECT_EQ(HtmlText(L""), "");
}

TEST(HtmlText, IsUtf8)
{
    EXPECT_EQ(HtmlText(L"\u00E4\u20AC\U0001F52C"), "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\xAC");
}

TEST(HtmlText, ReplacesWhatHtmlCannotHold)
{
    constexpr const char* replaced = "[\xEF\xBF\xBD]";
    EXPECT_EQ(HtmlText(std::wstring_view(L"[\0]", 3)), replaced);
    for (const wchar_t character :
         std::wstring_view(L"\x01\x08\x0B\x0C\x0D\x1B\x1F\x7F\x80\x9F\xD83D\xFDD0\xFDEF\xFFFE\xFFFF"))
        EXPECT_EQ(HtmlText(std::wstring(L"[") + character + L']'), replaced)
            << static_cast<unsigned>(character);
    EXPECT_EQ(HtmlText(L"[\U0001FFFE]"), replaced);
    EXPECT_EQ(HtmlText(L"[\U0010FFFF]"), replaced);
}

TEST(HtmlText, KeepsWhatIsBesideTheReplacedCharacters)
{
    EXPECT_EQ(HtmlText(L"\t\n ~"), "\t\n ~");
    EXPECT_EQ(HtmlText(L"\u00A0\uFDCF\uFDF0\uFFFD\U0001FFFD"),
              "\xC2\xA0\xEF\xB7\x8F\xEF\xB7\xB0\xEF\xBF\xBD\xF0\x9F\xBF\xBD");
}

TEST(RelativeUrl, KeepsTheUnreservedCharactersAndTheSlashes)
{
    EXPECT_EQ(RelativeUrl(L"pictures/sub-1/AZaz09._~.png"), "pictures/sub-1/AZaz09._~.png");
    EXPECT_EQ(RelativeUrl(L""), "");
}

TEST(RelativeUrl, EncodesWhatHasAMeaningInUrlsOrInHtml)
{
    EXPECT_EQ(RelativeUrl(L"100% #1? b.png"), "100%25%20%231%3F%20b.png");
    EXPECT_EQ(RelativeUrl(L"c:/d.png"), "c%3A/d.png");
    EXPECT_EQ(RelativeUrl(L"javascript:run()"), "javascript%3Arun%28%29");
    EXPECT_EQ(RelativeUrl(L"\"'<>&\\.png"), "%22%27%3C%3E%26%5C.png");
    EXPECT_EQ(RelativeUrl(L"[1]{2}+;=@!$*,^`|"), "%5B1%5D%7B2%7D%2B%3B%3D%40%21%24%2A%2C%5E%60%7C");
    EXPECT_EQ(RelativeUrl(L"\t\n\x7F"), "%09%0A%7F");
}

TEST(RelativeUrl, EncodesOtherCharactersAsUtf8)
{
    EXPECT_EQ(RelativeUrl(L"\u00E4\u20AC\U0001F52C"), "%C3%A4%E2%82%AC%F0%9F%94%AC");
    EXPECT_EQ(RelativeUrl(L"\xD83D.png"), "%EF%BF%BD.png");
}

} // namespace
