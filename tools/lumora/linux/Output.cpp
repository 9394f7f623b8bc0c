#include "lumora/console/Output.h"

#include "lumora/console/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <string>

#include <sys/ioctl.h>
#include <unistd.h>

namespace Lumora {

namespace {

/// The text without what would steer the terminal: a name can have any characters.
std::wstring Printable(std::wstring_view text)
{
    std::wstring printable(text);
    std::ranges::replace_if(
        printable,
        [](wchar_t character) {
            const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
            return isControl && std::wstring_view(L"\n\r\t").find(character) == std::wstring_view::npos;
        },
        L'\uFFFD');
    return printable;
}

} // namespace

Output::Output(Which which) noexcept : handle(which == Which::Standard ? STDOUT_FILENO : STDERR_FILENO)
{
    isTerminal = isatty(static_cast<int>(handle)) != 0;
}

bool Output::Write(std::wstring_view text) const
{
    const std::string bytes = ToUtf8(isTerminal ? Printable(text) : std::wstring(text));
    size_t written = 0;
    while (written < bytes.size())
    {
        const ssize_t count = write(static_cast<int>(handle), bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno != EINTR)
            return false;
        if (count > 0)
            written += static_cast<size_t>(count);
    }
    return true;
}

size_t Output::Columns() const noexcept
{
    constexpr size_t usual = 80;
    winsize size = {};
    const bool isKnown = ioctl(static_cast<int>(handle), TIOCGWINSZ, &size) == 0;
    return isKnown && size.ws_col > 1 ? size.ws_col : usual;
}

} // namespace Lumora
