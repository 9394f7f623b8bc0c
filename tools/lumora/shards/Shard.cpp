#include "lumora/shards/Shard.h"

#include "lumora/arguments/Numbers.h"

namespace Lumora {

std::optional<Shard> Shard::Parse(std::wstring_view text)
{
    const size_t slash = text.find(L'/');
    if (slash == std::wstring_view::npos)
        return std::nullopt;
    const std::optional<uint32_t> count = ParseNumber(text.substr(slash + 1), 1, mostShards);
    const std::optional<uint32_t> number = ParseNumber(text.substr(0, slash), 1, count.value_or(1));
    if (!count || !number)
        return std::nullopt;
    return Shard{*number, *count};
}

std::wstring Shard::Text() const
{
    return std::to_wstring(number) + L'/' + std::to_wstring(count);
}

} // namespace Lumora
