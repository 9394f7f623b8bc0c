#include "registration/RegistryKey.h"

#include <cstring>
#include <memory>

namespace Lumora {

namespace {

struct KeyCloser
{
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};

/// An open key.
using Handle = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

LSTATUS Open(HKEY hive, const std::wstring& path, REGSAM access, Handle& handle)
{
    HKEY key = nullptr;
    const LSTATUS result = RegOpenKeyExW(hive, path.c_str(), 0, access, &key);
    handle.reset(key);
    return result;
}

LSTATUS AbsentIsFine(LSTATUS result) noexcept
{
    return result == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : result;
}

} // namespace

RegistryValue RegistryValue::Text(std::wstring_view text)
{
    RegistryValue value{REG_SZ, std::vector<uint8_t>((text.size() + 1) * sizeof(wchar_t))};
    std::memcpy(value.bytes.data(), text.data(), text.size() * sizeof(wchar_t));
    return value;
}

RegistryValue RegistryValue::Number(uint32_t number)
{
    RegistryValue value{REG_DWORD, std::vector<uint8_t>(sizeof(number))};
    std::memcpy(value.bytes.data(), &number, sizeof(number));
    return value;
}

RegistryValue RegistryValue::Binary(std::span<const uint8_t> bytes)
{
    return {REG_BINARY, {bytes.begin(), bytes.end()}};
}

std::wstring RegistryValue::AsText() const
{
    if (type != REG_SZ)
        return {};
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    return text.substr(0, text.find(L'\0'));
}

RegistryKey::RegistryKey(RegistryBranch registryBranch, std::wstring_view pathBelow)
    : branch(registryBranch), path(branch.path)
{
    if (!pathBelow.empty())
        path.append(L"\\").append(pathBelow);
}

std::wstring RegistryKey::FullPath() const
{
    return (branch.hive == HKEY_CURRENT_USER ? L"HKEY_CURRENT_USER\\" : L"HKEY_LOCAL_MACHINE\\") + path;
}

LSTATUS RegistryKey::Read(const std::wstring& name, std::optional<RegistryValue>& value) const
{
    value.reset();
    Handle key;
    if (const LSTATUS result = Open(branch.hive, path, KEY_QUERY_VALUE, key); result != ERROR_SUCCESS)
        return AbsentIsFine(result);

    RegistryValue found;
    DWORD count = 0;
    LSTATUS result = RegQueryValueExW(key.get(), name.c_str(), nullptr, &found.type, nullptr, &count);
    while (result == ERROR_SUCCESS && count > found.bytes.size())
    {
        // Another program may change the value between the two calls. Then the loop asks for the size again.
        found.bytes.resize(count);
        result = RegQueryValueExW(key.get(), name.c_str(), nullptr, &found.type, found.bytes.data(), &count);
        if (result == ERROR_MORE_DATA)
            result = ERROR_SUCCESS;
    }
    if (result != ERROR_SUCCESS)
        return AbsentIsFine(result);
    found.bytes.resize(count);
    value = std::move(found);
    return ERROR_SUCCESS;
}

LSTATUS RegistryKey::Write(const std::wstring& name, const RegistryValue& value) const
{
    HKEY created = nullptr;
    const LSTATUS result =
        RegCreateKeyExW(branch.hive, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &created, nullptr);
    if (result != ERROR_SUCCESS)
        return result;
    const Handle key{created};
    return RegSetValueExW(key.get(), name.c_str(), 0, value.type, value.bytes.data(),
                          static_cast<DWORD>(value.bytes.size()));
}

LSTATUS RegistryKey::DeleteValue(const std::wstring& name) const
{
    Handle key;
    if (const LSTATUS result = Open(branch.hive, path, KEY_SET_VALUE, key); result != ERROR_SUCCESS)
        return AbsentIsFine(result);
    return AbsentIsFine(RegDeleteValueW(key.get(), name.c_str()));
}

LSTATUS RegistryKey::DeleteTree() const
{
    return AbsentIsFine(RegDeleteTreeW(branch.hive, path.c_str()));
}

LSTATUS RegistryKey::DeleteWhileEmpty() const
{
    for (std::wstring place = path; place != branch.path; place.resize(place.rfind(L'\\')))
    {
        Handle key;
        LSTATUS result = Open(branch.hive, place, KEY_QUERY_VALUE, key);
        if (result == ERROR_FILE_NOT_FOUND)
            continue;
        DWORD subkeys = 0;
        DWORD values = 0;
        if (result == ERROR_SUCCESS)
            result = RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr,
                                      &values, nullptr, nullptr, nullptr, nullptr);
        if (result == ERROR_SUCCESS && (subkeys > 0 || values > 0))
            return ERROR_SUCCESS;
        key.reset();
        if (result == ERROR_SUCCESS)
            result = RegDeleteKeyW(branch.hive, place.c_str());
        if (result != ERROR_SUCCESS)
            return result;
    }
    return ERROR_SUCCESS;
}

} // namespace Lumora
