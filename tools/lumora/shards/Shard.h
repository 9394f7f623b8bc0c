#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Lumora {

/// The part of a list of files that one of several machines works on: every `count`-th file, beginning with
/// the `number`-th, which is counted from 1.
struct Shard
{
    uint32_t number = 1;
    uint32_t count = 1;

    /// Merging has the files of all shards open, and systems allow a program little more.
    static constexpr uint32_t mostShards = 500;

    /// Reads "3/8". Returns nothing for any other text.
    [[nodiscard]] static std::optional<Shard> Parse(std::wstring_view text);

    [[nodiscard]] std::wstring Text() const;

    /// Whether the file with that index, counted from 0, is in the shard.
    [[nodiscard]] bool Has(uint64_t index) const noexcept { return index % count == number - 1; }
};

} // namespace Lumora
