#include "lumora/sheet/GalleryParts.h"

#include "lumora/console/Utf8.h"
#include "lumora/sheet/GalleryTemplate.h"

namespace Lumora {

namespace {

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

constexpr GalleryParts Split(std::string_view page)
{
    TakeUntil(page, "<!-- PAGE:");
    GalleryParts parts;
    parts.head = TakeUntil(page, "<!-- ENTRY:");
    parts.entry = TakeUntil(page, "<!-- FAILURE:");
    parts.failure = TakeUntil(page, "<!-- END ");
    parts.tail = page;
    return parts;
}

} // namespace

constexpr GalleryParts galleryParts = Split(galleryTemplate);

std::string_view GallerySignature() noexcept
{
    return galleryParts.head.substr(0, galleryParts.head.find("<html"));
}

std::string_view GalleryListBegin() noexcept
{
    const std::string_view head = galleryParts.head;
    return head.substr(head.rfind('\n', head.size() - 2) + 1);
}

std::string GalleryMark(std::wstring_view mark)
{
    return "<!-- " + ToUtf8(mark) + " -->\n";
}

} // namespace Lumora
