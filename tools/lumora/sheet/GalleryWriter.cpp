#include "lumora/sheet/GalleryWriter.h"

#include "lumora/console/Failure.h"
#include "lumora/sheet/GalleryTemplate.h"
#include "lumora/sheet/Html.h"

#include <algorithm>
#include <initializer_list>

namespace Lumora {

namespace {

constexpr const wchar_t* cannotWrite = L"cannot write the page";

/// The parts of the template.
struct Parts
{
    std::string_view head;
    std::string_view entry;
    std::string_view failure;
    std::string_view tail;
};

/// Takes from the rest what is before the comment that begins with this word, and the comment with its line
/// end.
constexpr std::string_view TakeUntil(std::string_view& rest, std::string_view comment)
{
    constexpr std::string_view commentEnd = "-->\n";
    const size_t begin = rest.find(comment);
    const std::string_view taken = rest.substr(0, begin);
    // Without the comment this is out of range, and the build fails.
    rest = rest.substr(begin);
    rest = rest.substr(rest.find(commentEnd) + commentEnd.size());
    return taken;
}

constexpr Parts Split(std::string_view page)
{
    TakeUntil(page, "<!-- PAGE:");
    Parts parts;
    parts.head = TakeUntil(page, "<!-- ENTRY:");
    parts.entry = TakeUntil(page, "<!-- FAILURE:");
    parts.failure = TakeUntil(page, "<!-- END ");
    parts.tail = page;
    return parts;
}

constexpr Parts parts = Split(galleryTemplate);

/// How every page begins.
constexpr std::string_view signature = parts.head.substr(0, parts.head.find("<html"));

/// A value of the template, as HTML.
struct Value
{
    std::string_view name;
    std::string html;
};

/// The part of the template with the values instead of their names in braces.
std::string Filled(std::string_view part, std::initializer_list<Value> values)
{
    std::string filled;
    while (true)
    {
        const size_t brace = part.find('{');
        filled += part.substr(0, brace);
        if (brace == std::string_view::npos)
            return filled;
        part.remove_prefix(brace + 1);
        const std::string_view name = part.substr(0, part.find('}'));
        const auto* const value = std::find_if(
            values.begin(), values.end(), [name](const Value& candidate) { return candidate.name == name; });
        if (value == values.end())
        {
            // This brace belongs to the style or to the script.
            filled += '{';
            continue;
        }
        filled += value->html;
        part.remove_prefix(name.size() + 1);
    }
}

std::wstring Tooltip(const GalleryEntry& entry)
{
    std::wstring tooltip = entry.source;
    for (const std::wstring* const line : {&entry.software, &entry.details})
    {
        if (!line->empty())
            tooltip += L'\n' + *line;
    }
    return tooltip;
}

std::wstring Facts(const GalleryEntry& entry)
{
    std::wstring facts = std::to_wstring(entry.width) + L" x " + std::to_wstring(entry.height);
    if (!entry.pixelType.empty())
        facts += L", " + entry.pixelType;
    return facts;
}

std::string EntryHtml(const GalleryEntry& entry)
{
    return Filled(parts.entry,
                  {{"name", HtmlText(entry.name)},
                   {"tooltip", HtmlText(Tooltip(entry))},
                   {"picture", RelativeUrl(entry.picture)},
                   {"pictureWidth", std::to_string(entry.pictureWidth)},
                   {"pictureHeight", std::to_string(entry.pictureHeight)},
                   {"pixels", std::to_string(uint64_t{entry.width} * entry.height)},
                   {"frames", std::to_string(entry.frames)},
                   {"frameCount", std::to_string(entry.frames) + (entry.frames == 1 ? " frame" : " frames")},
                   {"type", HtmlText(entry.pixelType)},
                   {"facts", HtmlText(Facts(entry))}});
}

std::string FailureHtml(const GalleryEntry& entry)
{
    return Filled(parts.failure, {{"name", HtmlText(entry.name)},
                                  {"tooltip", HtmlText(Tooltip(entry))},
                                  {"failure", HtmlText(entry.failure)}});
}

} // namespace

GalleryWriter::GalleryWriter(const std::wstring& path, std::wstring_view title, uint32_t pictureSide)
    : file(path, signature)
{
    WithName(cannotWrite, [this] { stream = ByteFile::Create(file.path); });
    Write(Filled(parts.head, {{"title", HtmlText(title)}, {"side", std::to_string(pictureSide)}}));
}

void GalleryWriter::Add(const GalleryEntry& entry)
{
    Write(entry.picture.empty() ? FailureHtml(entry) : EntryHtml(entry));
}

void GalleryWriter::Finish()
{
    Write(parts.tail);
    WriteOut();
    WithName(cannotWrite, [this] { stream.Close(); });
    file.Keep();
}

void GalleryWriter::Write(std::string_view text)
{
    constexpr size_t muchText = 65'536;
    pending += text;
    if (pending.size() >= muchText)
        WriteOut();
}

void GalleryWriter::WriteOut()
{
    WithName(cannotWrite, [this] {
        stream.Write({reinterpret_cast<const uint8_t*>(pending.data()), pending.size()});
    });
    pending.clear();
}

} // namespace Lumora
