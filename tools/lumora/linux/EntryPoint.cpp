#include "lumora/Program.h"
#include "lumora/files/NameText.h"

#include <algorithm>
#include <csignal>
#include <iterator>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// Takes the places of standard streams that are closed. Otherwise a file would get such a place, and with it
/// what is printed.
void OccupyStandardStreams()
{
    for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number)
    {
        // What is printed to the second one must fail, as before.
        if (fcntl(number, F_GETFD) < 0)
            open("/dev/null", number == STDERR_FILENO ? O_WRONLY : O_RDONLY);
    }
}

} // namespace

int main(int count, char** words)
{
    OccupyStandardStreams();
    // A closed pipe is an error like others, which is told.
    std::signal(SIGPIPE, SIG_IGN);
    std::vector<std::wstring> texts;
    std::transform(words + 1, words + count, std::back_inserter(texts), Lumora::TextOfName);
    std::vector<const wchar_t*> arguments;
    std::ranges::transform(texts, std::back_inserter(arguments), &std::wstring::c_str);
    return Lumora::RunProgram(arguments);
}
