#include "lumora/console/Console.h"

#include <algorithm>
#include <string>

namespace Lumora {

void Console::Print(std::wstring_view text)
{
    RemovePassing();
    isComplete = output.Write(text) && isComplete;
}

void Console::Complain(std::wstring_view line)
{
    RemovePassing();
    error.Write(std::wstring(line) + L"\n");
}

void Console::ShowPassing(std::wstring_view line)
{
    if (!error.IsTerminal())
        return;
    RemovePassing();
    // A line that is as wide as the terminal would continue in the next line and stay there.
    passingLength = std::min(line.size(), error.Columns() - 1);
    error.Write(L"\r" + std::wstring(line.substr(0, passingLength)));
}

void Console::RemovePassing()
{
    if (passingLength > 0)
        error.Write(L"\r" + std::wstring(passingLength, L' ') + L"\r");
    passingLength = 0;
}

} // namespace Lumora
