#include "support/ProgramFolder.h"

#ifdef _WIN32
#include <windows.h>

#include <array>
#endif

std::filesystem::path ProgramFolder()
{
#ifdef _WIN32
    std::array<wchar_t, 1024> program{};
    GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
    return std::filesystem::path(program.data()).parent_path();
#else
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
#endif
}
