#include "lumora/shards/ShardMark.h"

#include "lumora/arguments/Numbers.h"
#include "lumora/console/JsonWriter.h"
#include "lumora/console/Utf8.h"
#include "lumora/files/Paths.h"

#include <limits>

namespace Lumora {

namespace {

constexpr uint32_t noLimit = std::numeric_limits<uint32_t>::max();

/// What stands between the first of these texts and the next one after it; empty if they are not there.
std::wstring_view Between(std::wstring_view text, std::wstring_view before, std::wstring_view behind)
{
    const size_t begin = text.find(before);
    if (begin == std::wstring_view::npos)
        return {};
    text.remove_prefix(begin + before.size());
    const size_t end = text.find(behind);
    return end == std::wstring_view::npos ? std::wstring_view{} : text.substr(0, end);
}

} // namespace

void ShardMark::Add(const SourceFile& file)
{
    Hash longer(hash);
    for (const char byte : ToUtf8(JoinPath(file.subfolder, FileName(file.name))))
        longer.Add(byte == '\\' ? '/' : static_cast<unsigned char>(byte));
    longer.Add(0);
    hash = longer.Value();
    ++files;
}

std::wstring ShardMark::Text() const
{
    JsonWriter json(JsonWriter::Layout::OneLine);
    json.BeginObject();
    json.Text(L"shard", shard.Text());
    json.Number(L"files", files);
    json.Number(L"hash", hash);
    json.EndObject();
    return json.Take();
}

std::optional<ShardMark> ShardMark::Parse(std::string_view text)
{
    const std::wstring wide(text.begin(), text.end());
    const std::optional<Shard> shard = Shard::Parse(Between(wide, L"{\"shard\": \"", L"\", "));
    const std::optional<uint32_t> files = ParseNumber(Between(wide, L"\"files\": ", L", "), 0, noLimit);
    const std::optional<uint32_t> hash = ParseNumber(Between(wide, L"\"hash\": ", L"}"), 0, noLimit);
    if (!shard || !files || !hash)
        return std::nullopt;
    const ShardMark mark = {*shard, *files, *hash};
    return mark.Text() == wide ? std::optional(mark) : std::nullopt;
}

} // namespace Lumora
