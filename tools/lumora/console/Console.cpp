#include "lumora/console/Console.h"

#include "lumora/console/Utf8.h"

#include <algorithm>
#include <string>

namespace Lumora {

Console::Console() : output(Open(STD_OUTPUT_HANDLE)), error(Open(STD_ERROR_HANDLE)) {}

Console::Output Console::Open(DWORD standardHandle)
{
    const HANDLE handle = GetStdHandle(standardHandle);
    DWORD mode = 0;
    return {handle, GetConsoleMode(handle, &mode) != FALSE};
}

bool Console::Write(const Output& target, std::wstring_view text)
{
    DWORD written = 0;
    if (target.isTerminal)
        return WriteConsoleW(target.handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    const std::string bytes = ToUtf8(text);
    return WriteFile(target.handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size();
}

void Console::Print(std::wstring_view text)
{
    RemovePassing();
    isComplete = Write(output, text) && isComplete;
}

void Console::Complain(std::wstring_view line)
{
    RemovePassing();
    Write(error, std::wstring(line) + L"\n");
}

void Console::ShowPassing(std::wstring_view line)
{
    if (!error.isTerminal)
        return;
    RemovePassing();
    CONSOLE_SCREEN_BUFFER_INFO screen = {};
    const bool isKnown = GetConsoleScreenBufferInfo(error.handle, &screen) != FALSE;
    // A line that is as wide as the terminal would continue in the next line and stay there.
    const size_t width = isKnown && screen.dwSize.X > 1 ? static_cast<size_t>(screen.dwSize.X - 1) : 79;
    passingLength = std::min(line.size(), width);
    Write(error, L"\r" + std::wstring(line.substr(0, passingLength)));
}

void Console::RemovePassing()
{
    if (passingLength > 0)
        Write(error, L"\r" + std::wstring(passingLength, L' ') + L"\r");
    passingLength = 0;
}

} // namespace Lumora
