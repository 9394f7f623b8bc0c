#pragma once

#include <string_view>

namespace Tav::Imaging::RawImage {

/// Writes one line to the debugger output: "[Lumora] ", the format's tag and the message. Allocates nothing,
/// so it can report that memory is exhausted; a line is cut after 255 characters.
void WriteDiagnostic(std::wstring_view tag, std::wstring_view message) noexcept;

/// The same without a tag, for what does not belong to one format.
inline void WriteDiagnostic(std::wstring_view message) noexcept
{
    WriteDiagnostic({}, message);
}

/// Writes the lines of one format, all with its tag.
class ReaderLog
{
public:
    constexpr explicit ReaderLog(std::wstring_view formatTag) noexcept : tag(formatTag) {}

    void Write(std::wstring_view message) const noexcept { WriteDiagnostic(tag, message); }

    /// Writes why a file is refused. Returns false, which is what the reader then returns.
    [[nodiscard]] bool Fail(std::wstring_view message) const noexcept
    {
        Write(message);
        return false;
    }

private:
    std::wstring_view tag;
};

} // namespace Tav::Imaging::RawImage
