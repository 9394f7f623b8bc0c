#include "lumora/shards/ShardFile.h"

#include "lumora/console/Failure.h"
#include "lumora/console/Utf8.h"
#include "lumora/sheet/GalleryParts.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>

namespace Lumora {

namespace {

constexpr std::string_view entryBegin = "<li ";
constexpr std::string_view entryEnd = "</li>\n";

/// PowerShell puts carriage returns into what programs print.
void RemoveReturn(std::string& line)
{
    if (line.ends_with('\r'))
        line.pop_back();
}

} // namespace

ShardFile::ShardFile(const SourceFile& file)
    : source(file), stream(std::filesystem::path(file.path), std::ios::binary)
{
    if (!stream)
    {
        const std::string reason = std::generic_category().message(errno);
        Refuse(L"cannot be opened: " + std::wstring(reason.begin(), reason.end()));
    }
    if (BeginsWith("\xFF\xFE"))
        Refuse(L"this is UTF-16, as Windows PowerShell writes what lumora prints; run the shard in cmd");
    isPage = BeginsWith(GallerySignature());
    std::string last = LastLine();
    constexpr std::string_view commentBegin = "<!-- ";
    constexpr std::string_view commentEnd = " -->";
    if (isPage && last.starts_with(commentBegin) && last.ends_with(commentEnd))
        last = last.substr(commentBegin.size(), last.size() - commentBegin.size() - commentEnd.size());
    const std::optional<ShardMark> found = ShardMark::Parse(last);
    if (!found)
        Refuse(L"this is no shard, or its end is missing; run the shard again");
    mark = *found;
    stream.clear();
    stream.seekg(0);
}

std::string ShardFile::Head()
{
    std::string head;
    // Without this line, the end of the file is refused.
    while (isPage && !head.ends_with(GalleryListBegin()))
        head += Line();
    return head;
}

std::string ShardFile::Next()
{
    std::string text = Line();
    if (!isPage)
    {
        if (!text.starts_with(lineBegin))
            Refuse(L"this is not a whole shard; run the shard again");
        return text;
    }
    if (text == galleryLeftOut)
        return {};
    if (!text.starts_with(entryBegin))
        Refuse(L"this is not a whole shard; run the shard again");
    while (!text.ends_with(entryEnd))
        text += Line();
    return text;
}

void ShardFile::RequireEnd()
{
    const std::string expected =
        isPage ? std::string(galleryParts.tail) + GalleryMark(mark.Text()) : ToUtf8(mark.Text()) + '\n';
    std::string rest;
    while (rest.size() < expected.size())
        rest += Line();
    if (rest != expected || stream.peek() != std::ifstream::traits_type::eof())
        Refuse(L"there is more in this shard than its files; run the shard again");
}

void ShardFile::Refuse(const std::wstring& text) const
{
    throw Failure{source.name + L": " + text};
}

bool ShardFile::BeginsWith(std::string_view text)
{
    std::string begin(text.size(), '\0');
    stream.seekg(0);
    stream.read(begin.data(), static_cast<std::streamsize>(begin.size()));
    stream.clear();
    return begin == text;
}

std::string ShardFile::LastLine()
{
    // No mark is longer.
    constexpr std::streamoff longest = 200;
    stream.seekg(0, std::ios::end);
    const std::streamoff size = stream.tellg();
    stream.seekg(std::max<std::streamoff>(0, size - longest));
    std::string end(static_cast<size_t>(std::clamp<std::streamoff>(size, 0, longest)), '\0');
    stream.read(end.data(), static_cast<std::streamsize>(end.size()));
    if (!stream || !end.ends_with('\n'))
        return {};
    end.pop_back();
    RemoveReturn(end);
    return end.substr(end.rfind('\n') + 1);
}

std::string ShardFile::Line()
{
    std::string line;
    if (!std::getline(stream, line) || stream.eof())
        Refuse(L"this is not a whole shard; run the shard again");
    RemoveReturn(line);
    return line += '\n';
}

} // namespace Lumora
