#include "lumora/sheet/GalleryWriter.h"

#include "lumora/console/Failure.h"
#include "windows/clients/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using Lumora::GalleryEntry;
using Lumora::GalleryWriter;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

GalleryEntry Entry()
{
    GalleryEntry entry;
    entry.name = L"day 1\\scan.mrc";
    entry.source = L"D:\\data\\day 1\\scan.mrc";
    entry.picture = L"pictures/day 1/scan.mrc.png";
    entry.pictureWidth = 200;
    entry.pictureHeight = 150;
    entry.width = 4096;
    entry.height = 3072;
    entry.frames = 40;
    entry.pixelType = L"Int16";
    return entry;
}

std::string Text(const std::vector<uint8_t>& bytes)
{
    return {bytes.begin(), bytes.end()};
}

/// The page with this entry, without what stands before and behind the entry.
std::string Shown(const GalleryEntry& entry)
{
    const TemporaryFolder folder;
    GalleryWriter writer((folder.Path() / "index.html").native(), L"title", 200);
    writer.Add(entry);
    writer.Finish();
    const std::string page = Text(folder.Read("index.html"));
    const size_t begin = page.find("<li");
    return page.substr(begin, page.find("</ul>") - begin);
}

TEST(GalleryWriter, ShowsAFile)
{
    EXPECT_EQ(Shown(Entry()),
              "<li title=\"D:\\data\\day 1\\scan.mrc\" data-pixels=\"12582912\" data-frames=\"40\" "
              "data-type=\"Int16\">\n"
              "<div class=\"place\"><img src=\"pictures/day%201/scan.mrc.png\" width=\"200\" height=\"150\" "
              "alt=\"First frame of day 1\\scan.mrc\" loading=\"lazy\" decoding=\"async\"></div>\n"
              "<div class=\"name\" dir=\"auto\">day 1\\scan.mrc</div>\n"
              "<div>4096 x 3072, Int16</div>\n"
              "<div>40 frames</div>\n"
              "</li>\n");
}

TEST(GalleryWriter, SaysWhyAFileCannotBeShown)
{
    GalleryEntry entry;
    entry.name = L"cut.dm4";
    entry.source = L"D:\\data\\cut.dm4";
    entry.failure = L"the picture is damaged";
    const std::string html = Shown(entry);
    EXPECT_THAT(html, StartsWith("<li class=\"failed\" title=\"D:\\data\\cut.dm4\">\n"));
    EXPECT_THAT(html, HasSubstr("<div class=\"name\" dir=\"auto\">cut.dm4</div>\n"
                                "<div>the picture is damaged</div>\n"
                                "</li>\n"));
    EXPECT_THAT(html, Not(HasSubstr("<img")));
}

TEST(GalleryWriter, ListsTheSoftwareAndTheDetailsInTheTooltip)
{
    GalleryEntry entry = Entry();
    entry.details = L"MRC mode 1";
    EXPECT_THAT(Shown(entry), HasSubstr("title=\"D:\\data\\day 1\\scan.mrc\nMRC mode 1\""));
    entry.software = L"Pellox";
    EXPECT_THAT(Shown(entry), HasSubstr("title=\"D:\\data\\day 1\\scan.mrc\nPellox\nMRC mode 1\""));
}

TEST(GalleryWriter, WritesFactsThatFit)
{
    GalleryEntry entry = Entry();
    entry.frames = 1;
    entry.pixelType = L"";
    entry.width = 0xFFFFFFFF;
    entry.height = 0xFFFFFFFF;
    const std::string html = Shown(entry);
    EXPECT_THAT(html, HasSubstr("<div>1 frame</div>"));
    EXPECT_THAT(html, HasSubstr("<div>4294967295 x 4294967295</div>"));
    EXPECT_THAT(html, HasSubstr("data-pixels=\"18446744065119617025\""));
}

TEST(GalleryWriter, EscapesEveryText)
{
    GalleryEntry entry = Entry();
    for (std::wstring* const text :
         {&entry.name, &entry.source, &entry.pixelType, &entry.software, &entry.details, &entry.failure})
        *text = L"<b>\"";
    const std::string shown = Shown(entry);
    EXPECT_THAT(shown, Not(HasSubstr("<b>")));
    EXPECT_THAT(shown, HasSubstr("title=\"&lt;b&gt;&quot;\n&lt;b&gt;&quot;\n&lt;b&gt;&quot;\""));
    EXPECT_THAT(shown, HasSubstr("data-type=\"&lt;b&gt;&quot;\""));
    EXPECT_THAT(shown, HasSubstr("alt=\"First frame of &lt;b&gt;&quot;\""));
    EXPECT_THAT(shown, HasSubstr("<div class=\"name\" dir=\"auto\">&lt;b&gt;&quot;</div>"));
    EXPECT_THAT(shown, HasSubstr("<div>4096 x 3072, &lt;b&gt;&quot;</div>"));
    entry.picture = L"";
    const std::string failed = Shown(entry);
    EXPECT_THAT(failed, Not(HasSubstr("<b>")));
    EXPECT_THAT(failed, HasSubstr("<div>&lt;b&gt;&quot;</div>"));
}

TEST(GalleryWriter, FillsInNoNamesOfValuesThatAreInValues)
{
    GalleryEntry entry = Entry();
    entry.name = L"{type} {name.mrc";
    EXPECT_THAT(Shown(entry), HasSubstr(">{type} {name.mrc</div>"));
}

TEST(GalleryWriter, WritesAWholePage)
{
    const TemporaryFolder folder;
    GalleryWriter writer((folder.Path() / "index.html").native(), L"Grids & films", 320);
    writer.Finish();
    EXPECT_THAT(folder.Files(), ElementsAre("index.html"));
    const std::string page = Text(folder.Read("index.html"));
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>\n<!-- A sheet of Lumora. -->\n<html"));
    EXPECT_THAT(page, HasSubstr("<title>Grids &amp; films</title>"));
    EXPECT_THAT(page, HasSubstr("<h1>Grids &amp; films</h1>"));
    EXPECT_THAT(page, HasSubstr("--side: 320px;"));
    EXPECT_THAT(page, HasSubstr("<ul id=\"files\" role=\"list\">\n</ul>\n"));
    EXPECT_THAT(page, testing::EndsWith("</html>\n"));
    for (const char* const leftOut :
         {"PAGE:", "ENTRY:", "FAILURE:", "END -->", "{title}", "{side}", "{name}", "{facts}", "{failure}"})
        EXPECT_THAT(page, Not(HasSubstr(leftOut)));
}

TEST(GalleryWriter, ReplacesAnOlderPage)
{
    const TemporaryFolder folder;
    constexpr std::string_view start = "<!DOCTYPE html>\n<!-- A sheet of Lumora. -->\n";
    std::vector<uint8_t> older(1'000'000, 'x');
    std::copy(start.begin(), start.end(), older.begin());
    folder.Write("index.html", older);
    {
        GalleryWriter writer((folder.Path() / "index.html").native(), L"title", 200);
        writer.Add(Entry());
        EXPECT_EQ(folder.Read("index.html"), older);
        writer.Finish();
    }
    EXPECT_THAT(folder.Files(), ElementsAre("index.html"));
    EXPECT_THAT(Text(folder.Read("index.html")), testing::EndsWith("</html>\n"));
}

TEST(GalleryWriter, ReplacesNoPageOfAnother)
{
    const TemporaryFolder folder;
    const std::string other = "<!DOCTYPE html>\n<html>\n";
    folder.Write("index.html", std::vector<uint8_t>(other.begin(), other.end()));
    const std::wstring path = (folder.Path() / "index.html").native();
    EXPECT_TRUE(Lumora::FailureOf([&] { const GalleryWriter writer(path, L"title", 200); }));
    EXPECT_EQ(Text(folder.Read("index.html")), other);
    EXPECT_THAT(folder.Files(), ElementsAre("index.html"));
}

TEST(GalleryWriter, LeavesNoUnfinishedPage)
{
    const TemporaryFolder folder;
    {
        GalleryWriter writer((folder.Path() / "index.html").native(), L"title", 200);
        writer.Add(Entry());
        EXPECT_THAT(folder.Files(), ElementsAre("index.html.lumora-part"));
    }
    EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST(GalleryWriter, FailsWhereItCannotWrite)
{
    const TemporaryFolder folder;
    // No file can be made in the place of this folder.
    std::filesystem::create_directory(folder.Path() / "index.html.lumora-part");
    const std::wstring path = (folder.Path() / "index.html").native();
    const auto failure = Lumora::FailureOf([&] { const GalleryWriter writer(path, L"title", 200); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(*failure, L"cannot write the file: access is denied (E_ACCESSDENIED)");
    EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST(GalleryWriter, FailsWhereThePageCannotHaveItsName)
{
    const TemporaryFolder folder;
    const auto failure = Lumora::FailureOf([&] {
        GalleryWriter writer((folder.Path() / "index.html").native(), L"title", 200);
        std::filesystem::create_directory(folder.Path() / "index.html");
        writer.Finish();
    });
    ASSERT_TRUE(failure);
    EXPECT_THAT(*failure, StartsWith(L"cannot give the file its name: "));
    EXPECT_THAT(folder.Files(), IsEmpty());
}

} // namespace
