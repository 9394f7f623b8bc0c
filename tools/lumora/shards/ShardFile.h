#pragma once

#include "lumora/files/FileSource.h"
#include "lumora/shards/ShardMark.h"

#include <cstdint>
#include <fstream>
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
    [[nodiscard]] bool BeginsWith(std::string_view text);
    /// The mark at the end, as it stands there.
    [[nodiscard]] std::string LastLine();
    /// The next line with a line feed. There must be one.
    [[nodiscard]] std::string Line();

    SourceFile source;
    std::ifstream stream;
    bool isPage = false;
    ShardMark mark;
};

} // namespace Lumora
