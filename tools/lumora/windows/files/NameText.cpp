#include "lumora/files/NameText.h"

#include <windows.h>

namespace Lumora {

namespace {

/// Empty if the bytes are not valid in the code page.
std::wstring Decoded(std::string_view bytes, unsigned codePage, DWORD flags)
{
    const auto length = static_cast<int>(bytes.size());
    const int needed = MultiByteToWideChar(codePage, flags, bytes.data(), length, nullptr, 0);
    std::wstring text(static_cast<size_t>(needed), L'\0');
    MultiByteToWideChar(codePage, flags, bytes.data(), length, text.data(), needed);
    return text;
}

} // namespace

std::wstring TextOfName(std::string_view bytes)
{
    // The terminal's own commands write lists in its code page.
    const std::wstring text = Decoded(bytes, CP_UTF8, MB_ERR_INVALID_CHARS);
    return text.empty() ? Decoded(bytes, CP_OEMCP, 0) : text;
}

} // namespace Lumora
