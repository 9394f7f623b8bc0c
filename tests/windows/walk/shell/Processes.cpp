#include "windows/walk/shell/ShellSteps.h"

#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <array>

namespace {

using Modules = std::vector<HMODULE>;

Modules ModulesOf(HANDLE process)
{
    Modules modules(4096);
    DWORD bytes = 0;
    if (!EnumProcessModulesEx(process, modules.data(), static_cast<DWORD>(modules.size() * sizeof(HMODULE)),
                              &bytes, LIST_MODULES_ALL))
        return {};
    modules.resize(std::min(modules.size(), bytes / sizeof(HMODULE)));
    return modules;
}

std::wstring NameOf(HANDLE process, HMODULE module)
{
    std::array<wchar_t, MAX_PATH> name{};
    GetModuleBaseNameW(process, module, name.data(), static_cast<DWORD>(name.size()));
    CharLowerW(name.data());
    return name.data();
}

/// The names of the processes that have loaded a DLL, in lowercase.
std::vector<std::wstring> ProcessesWith(const std::wstring& dll)
{
    std::vector<DWORD> ids(16384);
    DWORD bytes = 0;
    EnumProcesses(ids.data(), static_cast<DWORD>(ids.size() * sizeof(DWORD)), &bytes);
    ids.resize(bytes / sizeof(DWORD));
    std::vector<std::wstring> names;
    for (const DWORD id : ids)
    {
        const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id);
        if (!process)
            continue;
        const Modules modules = ModulesOf(process);
        if (std::ranges::any_of(modules, [&](HMODULE module) { return NameOf(process, module) == dll; }))
            names.push_back(NameOf(process, nullptr));
        CloseHandle(process);
    }
    return names;
}

} // namespace

void CheckProcesses(Report& report, const Host& host)
{
    const std::string step = "processes that have loaded Lumora.dll";
    const std::vector<std::wstring> names = ProcessesWith(L"lumora.dll");
    std::vector<std::string> details;
    for (const std::wstring& name : names)
        details.push_back(Utf8(name));
    if (std::ranges::find(names, L"explorer.exe") != names.end())
        report.Add(Verdict::Differs, step, details);
    else if (std::ranges::find(names, L"dllhost.exe") != names.end())
        report.Add(Verdict::Passed, step, details);
    else
    {
        details.emplace_back(host.isWine ? "Wine's shell has no process for thumbnails"
                                         : "no dllhost.exe has");
        report.Add(Verdict::NotChecked, step, details);
    }
}
