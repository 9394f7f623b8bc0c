#include "windows/walk/Host.h"

#include <windows.h>

#include <cstdio>
#include <filesystem>

namespace {

constexpr const wchar_t* versionKey = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";

std::wstring VersionText(const wchar_t* name)
{
    wchar_t text[256] = {};
    DWORD bytes = sizeof(text);
    RegGetValueW(HKEY_LOCAL_MACHINE, versionKey, name, RRF_RT_REG_SZ, nullptr, text, &bytes);
    return text;
}

DWORD VersionNumber(const wchar_t* name)
{
    DWORD number = 0;
    DWORD bytes = sizeof(number);
    RegGetValueW(HKEY_LOCAL_MACHINE, versionKey, name, RRF_RT_REG_DWORD, nullptr, &number, &bytes);
    return number;
}

bool IsElevated()
{
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token))
        return false;
    TOKEN_ELEVATION elevation = {};
    DWORD bytes = 0;
    const BOOL isKnown = GetTokenInformation(token, TokenElevation, &elevation, sizeof(elevation), &bytes);
    CloseHandle(token);
    return isKnown && elevation.TokenIsElevated != 0;
}

} // namespace

Host ThisHost()
{
    Host host;
    const FARPROC wineVersion = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version");
    host.isWine = wineVersion != nullptr;
    // Wine lets every program change its settings. Since version 10 it says no more that the program may.
    host.isElevated = host.isWine || IsElevated();
    // Windows 11 calls itself Windows 10 here; its builds have numbers from 22000.
    host.name = Utf8(VersionText(L"ProductName") + L' ' + VersionText(L"DisplayVersion") + L", build " +
                     VersionText(L"CurrentBuild") + L'.' + std::to_wstring(VersionNumber(L"UBR")));
    if (host.isWine)
    {
        const auto version = reinterpret_cast<const char* (*)()>(reinterpret_cast<void*>(wineVersion));
        host.name = std::string("Wine ") + version() + ", which says " + host.name;
    }
    return host;
}

std::string Utf8(const std::wstring& text)
{
    const std::u8string bytes = std::filesystem::path(text).u8string();
    return {bytes.begin(), bytes.end()};
}

std::string HexCode(unsigned long code)
{
    char text[16];
    std::snprintf(text, sizeof(text), "0x%08lX", code);
    return text;
}
