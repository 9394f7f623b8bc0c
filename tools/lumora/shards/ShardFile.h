#pragma once

#include "lumora/files/ByteFile.h"
#include "lumora/files/FileSource.h"
#include "lumora/shards/ShardMark.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Lumora {

/// What one shard of a run has written, JSON Lines or a page, file after file. Only one of them is in memory.
/// Whatever is not as a shard writes it throws a Failure.
class ShardFile
{
public:
    /// How lines of JSON begin.
    static constexpr std::string_view lineBegin = "{\"path\": ";

    explicit ShardFile(const SourceFile& file);

    [[nodiscard]] const SourceFile& Source() const noexcept { return source; }
    [[nodiscard]] const ShardMark& Mark() const noexcept { return mark; }
    [[nodiscard]] bool IsPage() const noexcept { return isPage; }

    /// What stands before the first file.
    [[nodiscard]] std::string Head();

    /// The next file; empty for one that is left out.
    [[nodiscard]] std::string Next();

    /// Reads to the end, where there must be no further file.
    void RequireEnd();

private:
    [[noreturn]] void Refuse(const std::wstring& text) const;
    void Seek(uint64_t position);
    /// Adds bytes to those that are not taken yet. Returns false at the end.
    [[nodiscard]] bool ReadAhead();
    /// The next bytes; fewer at the end.
    [[nodiscard]] std::string Read(size_t count);
    [[nodiscard]] bool BeginsWith(std::string_view text);
    /// The mark at the end, as it stands there.
    [[nodiscard]] std::string LastLine();
    /// The next line with a line feed. There must be one.
    [[nodiscard]] std::string Line();

    SourceFile source;
    ByteFile stream;
    /// What was read of the file, of which so many bytes are taken.
    std::string ahead;
    size_t taken = 0;
    bool isPage = false;
    ShardMark mark;
};

} // namespace Lumora
