#include "platform/SystemText.h"

#include <array>
#include <cwctype>

std::wstring SystemText(DWORD code)
{
    std::array<wchar_t, 512> text = {};
    size_t length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                                   0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    while (length > 0 && (std::iswspace(text[length - 1]) || text[length - 1] == L'.'))
        --length;
    return {text.data(), length};
}
