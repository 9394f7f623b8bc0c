#include "lumora/Program.h"
#include "lumora/files/NameText.h"

#include <csignal>
#include <string>
#include <vector>

int main(int count, char** words)
{
    // A closed pipe is an error like others, which is told.
    std::signal(SIGPIPE, SIG_IGN);
    std::vector<std::wstring> texts;
    for (int index = 1; index < count; ++index)
        texts.push_back(Lumora::TextOfName(words[index]));
    std::vector<const wchar_t*> arguments;
    for (const std::wstring& text : texts)
        arguments.push_back(text.c_str());
    return Lumora::RunProgram(arguments);
}
