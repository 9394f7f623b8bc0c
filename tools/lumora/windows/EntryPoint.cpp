#include "lumora/Program.h"

// The start-up code requires this name.
int wmain(int count, wchar_t** arguments) // NOLINT(readability-identifier-naming)
{
    return Lumora::RunProgram({arguments + 1, arguments + count});
}
