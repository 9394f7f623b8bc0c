#pragma once

#include "lumora/files/FileSource.h"
#include "lumora/files/Hash.h"
#include "lumora/shards/Shard.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Lumora {

/// What the output of a shard says at its end: that it is complete, and of which list of files it is a part.
struct ShardMark
{
    Shard shard;
    /// How many files the whole list has.
    uint32_t files = 0;
    /// Of the names of all files.
    uint32_t hash = Hash().Value();

    /// Takes the next file of the whole list. What counts is its place below the folder that the user named:
    /// machines may see that folder in different places.
    void Add(const SourceFile& file);

    /// As a JSON object in one line.
    [[nodiscard]] std::wstring Text() const;

    /// Reads this text. Returns nothing for any other.
    [[nodiscard]] static std::optional<ShardMark> Parse(std::string_view text);

    [[nodiscard]] bool IsOfSameList(const ShardMark& other) const noexcept
    {
        return files == other.files && hash == other.hash;
    }
};

} // namespace Lumora
