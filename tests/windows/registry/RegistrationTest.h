#pragma once

#include "windows/registry/RegistrySandbox.h"
#include "windows/registry/RegistrySnapshot.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

inline constexpr const wchar_t* dllPath = L"C:\\Program Files\\Lumora\\Lumora.dll";
inline constexpr const wchar_t* thumbnails = L"\\ShellEx\\{e357fccd-a995-4576-b01f-234630154e96}";
// Not inline: each of these needs those before it, and inline variables are not made in the order in which
// they stand.
const std::wstring classes = L"SOFTWARE\\Classes\\";
const std::wstring windows = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\";
const std::wstring decoder = classes + L"CLSID\\{0B6C4D37-1F0E-4E5B-9C57-6A3D2C9E41F8}";
const std::wstring handler = classes + L"CLSID\\{5D2E8A94-7C3B-4F61-8E0A-B1947F26D3C5}";
const std::wstring handlers = windows + L"PropertySystem\\PropertyHandlers\\";

inline constexpr const wchar_t* absent = L"<absent>";

inline std::wstring Text(HKEY hive, const std::wstring& key, const wchar_t* name = L"")
{
    std::array<wchar_t, 2048> text = {};
    auto bytes = static_cast<DWORD>(sizeof(text));
    const LSTATUS result = RegGetValueW(hive, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text.data(), &bytes);
    return result == ERROR_SUCCESS ? text.data() : absent;
}

inline std::wstring Text(const std::wstring& key, const wchar_t* name = L"")
{
    return Text(HKEY_LOCAL_MACHINE, key, name);
}

/// The number; -1 when there is none.
inline int64_t Number(const std::wstring& key, const wchar_t* name)
{
    DWORD number = 0;
    DWORD bytes = sizeof(number);
    const LSTATUS result =
        RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, RRF_RT_REG_DWORD, nullptr, &number, &bytes);
    return result == ERROR_SUCCESS ? int64_t{number} : -1;
}

inline std::vector<uint8_t> Binary(const std::wstring& key, const wchar_t* name)
{
    std::vector<uint8_t> content(1024);
    auto bytes = static_cast<DWORD>(content.size());
    const LSTATUS result = RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, RRF_RT_REG_BINARY, nullptr,
                                        content.data(), &bytes);
    content.resize(result == ERROR_SUCCESS ? bytes : 0);
    return content;
}

inline void SetText(const std::wstring& key, const wchar_t* name, const std::wstring& text)
{
    ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_SZ, text.c_str(),
                              static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
              ERROR_SUCCESS);
}

inline bool Exists(const std::wstring& key)
{
    HKEY opened = nullptr;
    const LSTATUS result = RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ, &opened);
    RegCloseKey(opened);
    return result == ERROR_SUCCESS;
}

inline void MakeKey(HKEY hive, const std::wstring& key, DWORD options = REG_OPTION_NON_VOLATILE)
{
    HKEY created = nullptr;
    ASSERT_EQ(RegCreateKeyExW(hive, key.c_str(), 0, nullptr, options, KEY_READ, nullptr, &created, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(created);
}

/// A registry in which only the keys stand that Windows itself keeps.
class Registration : public testing::Test
{
protected:
    void SetUp() override
    {
        MakeKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes");
        MakeKey(HKEY_LOCAL_MACHINE, windows + L"PropertySystem\\PropertyHandlers");
        MakeKey(HKEY_LOCAL_MACHINE, windows + L"Explorer\\KindMap");
        MakeKey(HKEY_CURRENT_USER, L"SOFTWARE\\Classes");
        before = TakeRegistrySnapshot();
        ASSERT_TRUE(before.contains(L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes"));
    }

    RegistrySandbox sandbox;
    RegistrySnapshot before;
};
