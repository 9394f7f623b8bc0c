#include "lumora/sheet/GalleryWriter.h"

#include "lumora/sheet/GalleryParts.h"
#include "lumora/sheet/Html.h"

#include <algorithm>
#include <initializer_list>

namespace Lumora {

namespace {

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
    return Filled(galleryParts.entry,
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
    return Filled(galleryParts.failure, {{"name", HtmlText(entry.name)},
                                         {"tooltip", HtmlText(Tooltip(entry))},
                                         {"failure", HtmlText(entry.failure)}});
}

} // namespace

GalleryWriter::GalleryWriter(const std::wstring& path, std::wstring_view title, uint32_t pictureSide)
    : page(path, GallerySignature())
{
    page.Write(
        Filled(galleryParts.head, {{"title", HtmlText(title)}, {"side", std::to_string(pictureSide)}}));
}

void GalleryWriter::Add(const GalleryEntry& entry)
{
    page.Write(entry.picture.empty() ? FailureHtml(entry) : EntryHtml(entry));
}

void GalleryWriter::LeaveOut()
{
    page.Write(galleryLeftOut);
}

void GalleryWriter::Finish(std::wstring_view mark)
{
    page.Write(galleryParts.tail);
    if (!mark.empty())
        page.Write(GalleryMark(mark));
    page.Keep();
}

} // namespace Lumora
