#include "lumora/console/Output.h"

#include "lumora/console/Utf8.h"

#include <windows.h>

namespace Lumora {

namespace {

HANDLE HandleOf(std::intptr_t value) noexcept
{
    return reinterpret_cast<HANDLE>(value); // NOLINT(performance-no-int-to-ptr)
}

} // namespace

Output::Output(Which which) noexcept
    : handle(reinterpret_cast<std::intptr_t>(
          GetStdHandle(which == Which::Standard ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE)))
{
    DWORD mode = 0;
    isTerminal = GetConsoleMode(HandleOf(handle), &mode) != FALSE;
}

bool Output::Write(std::wstring_view text) const
{
    DWORD written = 0;
    if (isTerminal)
        return WriteConsoleW(HandleOf(handle), text.data(), static_cast<DWORD>(text.size()), &written,
                             nullptr);
    const std::string bytes = ToUtf8(text);
    return WriteFile(HandleOf(handle), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size();
}

size_t Output::Columns() const noexcept
{
    constexpr size_t usual = 80;
    CONSOLE_SCREEN_BUFFER_INFO screen = {};
    const bool isKnown = GetConsoleScreenBufferInfo(HandleOf(handle), &screen) != FALSE;
    return isKnown && screen.dwSize.X > 1 ? static_cast<size_t>(screen.dwSize.X) : usual;
}

} // namespace Lumora
