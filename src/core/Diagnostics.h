#pragma once

#include <string_view>

namespace Tav::Imaging::RawImage {

/// Writes one line to the debugger output: "[Lumora] ", the format's tag and the message.
/// Allocates nothing, so it can report that memory is exhausted; lines end after 255 characters.
void WriteDiagnostic(std::wstring_view tag, std::wstring_view message) noexcept;

/// The same without a tag, for what does not belong to one format.
inline void WriteDiagnostic(std::wstring_view message) noexcept
{
    WriteDiagnostic({}, message);
}

} // namespace Tav::Imaging::RawImage
