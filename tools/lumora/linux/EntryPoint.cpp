#include "lumora/Program.h"
#include "lumora/files/NameText.h"

#include <algorithm>
#include <csignal>
#include <iterator>
#include <string>
#include <vector>

int main(int count, char** words)
{
    // A closed pipe is an error like others, which is told.
    std::signal(SIGPIPE, SIG_IGN);
    std::vector<std::wstring> texts;
    std::transform(words + 1, words + count, std::back_inserter(texts), Lumora::TextOfName);
    std::vector<const wchar_t*> arguments;
    std::ranges::transform(texts, std::back_inserter(arguments), &std::wstring::c_str);
    return Lumora::RunProgram(arguments);
}
