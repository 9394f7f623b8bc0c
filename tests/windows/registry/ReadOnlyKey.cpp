#include "windows/registry/ReadOnlyKey.h"

#include <gtest/gtest.h>

#include <sddl.h>

ReadOnlyKey::ReadOnlyKey(const std::wstring& path)
{
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
    Allow(L"D:(A;;KR;;;WD)");
}

ReadOnlyKey::~ReadOnlyKey()
{
    Allow(L"D:(A;;KA;;;WD)");
    RegCloseKey(key);
}

void ReadOnlyKey::Allow(const wchar_t* rights)
{
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_TRUE(
        ConvertStringSecurityDescriptorToSecurityDescriptorW(rights, SDDL_REVISION_1, &descriptor, nullptr));
    EXPECT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
    LocalFree(descriptor);
}
