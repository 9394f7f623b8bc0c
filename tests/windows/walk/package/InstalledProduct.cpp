#include "windows/walk/package/InstalledProduct.h"

#include "registration/ClassIds.h"

#include <windows.h>

#include <objbase.h>
#include <shlobj.h>

#include <array>

namespace {

constexpr const wchar_t* uninstallKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr const wchar_t* handlersKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\PropertySystem\\PropertyHandlers";

const std::array<RegistryTree, 7> touchedTrees = {{
    {HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes"},
    {HKEY_LOCAL_MACHINE, L"SOFTWARE\\Lumora"},
    {HKEY_LOCAL_MACHINE, uninstallKey},
    {HKEY_LOCAL_MACHINE, handlersKey},
    {HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\KindMap"},
    {HKEY_CURRENT_USER, L"SOFTWARE\\Classes"},
    // With PATH, in which Wine's installer leaves a semicolon each time.
    {HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment"},
}};

std::wstring TextValue(const std::wstring& key, const wchar_t* name)
{
    std::array<wchar_t, 512> text{};
    DWORD bytes = sizeof(text);
    RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text.data(), &bytes);
    return text.data();
}

/// The installer's own notes of its products, and the shell's memory of windows and names.
bool IsKeptBySystem(const std::wstring& path)
{
    return path.find(L"\\Installer\\") != std::wstring::npos || path.ends_with(L"\\Installer") ||
           path.find(L"\\Local Settings") != std::wstring::npos;
}

} // namespace

std::filesystem::path InstallationFolder()
{
    std::array<wchar_t, MAX_PATH> folder{};
    SHGetFolderPathW(nullptr, CSIDL_PROGRAM_FILES, nullptr, 0, folder.data());
    return std::filesystem::path(folder.data()) / L"Lumora";
}

bool IsLumoraThere()
{
    return std::filesystem::exists(InstallationFolder()) || ListedProducts() > 0 ||
           HandlesPropertiesOf(L".mrc");
}

size_t ListedProducts()
{
    HKEY list = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, uninstallKey, 0, KEY_READ, &list) != ERROR_SUCCESS)
        return 0;
    size_t count = 0;
    std::array<wchar_t, 256> name{};
    for (DWORD index = 0;
         RegEnumKeyW(list, index, name.data(), static_cast<DWORD>(name.size())) == ERROR_SUCCESS; ++index)
    {
        if (TextValue(std::wstring(uninstallKey) + L'\\' + name.data(), L"DisplayName") == L"Lumora")
            ++count;
    }
    RegCloseKey(list);
    return count;
}

bool HandlesPropertiesOf(const std::wstring& extension)
{
    std::array<wchar_t, 39> handler{};
    StringFromGUID2(CLSID_LumoraPropertyHandler, handler.data(), static_cast<int>(handler.size()));
    return TextValue(std::wstring(handlersKey) + L'\\' + extension, nullptr) == handler.data();
}

RegistrySnapshot TakeInstallationSnapshot(const Host& host)
{
    return TakeRegistrySnapshot(std::span(touchedTrees).first(touchedTrees.size() - (host.isWine ? 1 : 0)));
}

std::vector<std::string> InstallationDifferences(const RegistrySnapshot& before,
                                                 const RegistrySnapshot& after)
{
    std::vector<std::string> paths;
    for (const std::wstring& path : Differences(before, after))
    {
        if (!IsKeptBySystem(path))
            paths.push_back(Utf8(path));
    }
    return paths;
}
