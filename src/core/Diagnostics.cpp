#include "core/Diagnostics.h"

#include "platform/Platform.h"

#include <algorithm>
#include <array>

namespace Tav::Imaging::RawImage {

void WriteDiagnostic(std::wstring_view tag, std::wstring_view message) noexcept
{
    std::array<wchar_t, 256> line;
    size_t length = 0;
    for (const std::wstring_view part : {std::wstring_view{L"[Lumora] "}, tag, message})
    {
        const size_t count = std::min(part.size(), line.size() - 1 - length);
        std::copy_n(part.data(), count, line.data() + length);
        length += count;
    }
    line[length] = L'\0';
    OutputDebugStringW(line.data());
}

} // namespace Tav::Imaging::RawImage
