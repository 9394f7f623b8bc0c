#include "lumora/shards/ShardFile.h"

#include "lumora/console/Failure.h"
#include "lumora/console/Utf8.h"
#include "lumora/files/FileSystem.h"
#include "lumora/sheet/GalleryParts.h"

#include <algorithm>
#include <array>
#include <optional>

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

ShardFile::ShardFile(const SourceFile& file) : source(file)
{
    WithName(source.name, [this] { stream = ByteFile::Open(source.path); });
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
    Seek(0);
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
    if (rest != expected || !Read(1).empty())
        Refuse(L"there is more in this shard than its files; run the shard again");
}

void ShardFile::Refuse(const std::wstring& text) const
{
    throw Failure{source.name + L": " + text};
}

void ShardFile::Seek(uint64_t position)
{
    WithName(source.name, [this, position] { stream.Seek(position); });
    ahead.clear();
    taken = 0;
}

bool ShardFile::ReadAhead()
{
    ahead.erase(0, taken);
    taken = 0;
    std::array<uint8_t, 65'536> bytes = {};
    size_t count = 0;
    WithName(source.name, [&] { count = stream.Read(bytes); });
    ahead.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
    return count > 0;
}

std::string ShardFile::Read(size_t count)
{
    while (ahead.size() - taken < count && ReadAhead())
        continue;
    std::string text = ahead.substr(taken, count);
    taken += text.size();
    return text;
}

bool ShardFile::BeginsWith(std::string_view text)
{
    Seek(0);
    return Read(text.size()) == text;
}

std::string ShardFile::LastLine()
{
    // No mark is longer.
    constexpr uint64_t longest = 200;
    const uint64_t size = FileSize(source.path).value_or(0);
    Seek(size - std::min(size, longest));
    std::string end = Read(longest);
    if (!end.ends_with('\n'))
        return {};
    end.pop_back();
    RemoveReturn(end);
    return end.substr(end.rfind('\n') + 1);
}

std::string ShardFile::Line()
{
    size_t end = ahead.find('\n', taken);
    while (end == std::string::npos)
    {
        const size_t searched = ahead.size() - taken;
        if (!ReadAhead())
            Refuse(L"this is not a whole shard; run the shard again");
        end = ahead.find('\n', searched);
    }
    std::string line = ahead.substr(taken, end - taken);
    taken = end + 1;
    RemoveReturn(line);
    return line += '\n';
}

} // namespace Lumora
