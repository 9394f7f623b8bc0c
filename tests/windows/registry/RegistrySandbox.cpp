#include "windows/registry/RegistrySandbox.h"

#include <algorithm>
#include <stdexcept>

namespace {

const std::array<HKEY, 3> roots = {HKEY_CLASSES_ROOT, HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER};

} // namespace

RegistrySandbox::RegistrySandbox() : path(L"Software\\LumoraTests" + std::to_wstring(GetCurrentProcessId()))
{
    for (size_t i = 0; i < roots.size(); ++i)
    {
        const std::wstring name = path + L"\\" + std::to_wstring(i);
        if (RegCreateKeyW(HKEY_CURRENT_USER, name.c_str(), &keys[i]) != ERROR_SUCCESS)
            throw std::runtime_error("Cannot create a key for the tests");
    }
    for (size_t i = 0; i < roots.size(); ++i)
        RegOverridePredefKey(roots[i], keys[i]);
}

RegistrySandbox::~RegistrySandbox()
{
    for (size_t i = 0; i < roots.size(); ++i)
    {
        RegOverridePredefKey(roots[i], nullptr);
        RegCloseKey(keys[i]);
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
}

bool RegistrySandbox::IsEmpty() const
{
    return std::all_of(keys.begin(), keys.end(), [](HKEY key) {
        DWORD subkeys = 0;
        DWORD values = 0;
        return RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values, nullptr,
                                nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
               subkeys == 0 && values == 0;
    });
}
