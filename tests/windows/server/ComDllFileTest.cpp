#include "windows/clients/LumoraModule.h"
#include "windows/support/PortableExecutable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <winver.h>

#include <string>
#include <vector>

using testing::AnyOf;
using testing::Each;
using testing::StrCaseEq;
using testing::UnorderedElementsAre;

namespace {

const PortableExecutable& DllFile()
{
    static const PortableExecutable file{LumoraModule::File()};
    return file;
}

/// The version resource of Lumora.dll.
class VersionResource
{
public:
    VersionResource()
    {
        const std::wstring path = LumoraModule::File().wstring();
        DWORD ignored = 0;
        content.resize(GetFileVersionInfoSizeW(path.c_str(), &ignored));
        if (!GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(content.size()), content.data()))
            content.clear();
    }

    [[nodiscard]] VS_FIXEDFILEINFO Fixed() const
    {
        const auto* const info = static_cast<const VS_FIXEDFILEINFO*>(Value(L"\\"));
        return info ? *info : VS_FIXEDFILEINFO{};
    }

    /// A string of the American English, Unicode block.
    [[nodiscard]] std::wstring Text(const std::wstring& name) const
    {
        const auto* const text = static_cast<const wchar_t*>(Value(L"\\StringFileInfo\\040904B0\\" + name));
        return text ? text : L"";
    }

private:
    [[nodiscard]] const void* Value(const std::wstring& path) const
    {
        void* value = nullptr;
        UINT length = 0;
        return !content.empty() && VerQueryValueW(content.data(), path.c_str(), &value, &length) ? value
                                                                                                 : nullptr;
    }

    std::vector<uint8_t> content;
};

} // namespace

TEST(DllFile, IsADllFor64BitIntelProcessors)
{
    EXPECT_EQ(DllFile().fileHeader.Machine, IMAGE_FILE_MACHINE_AMD64);
    EXPECT_NE(DllFile().fileHeader.Characteristics & IMAGE_FILE_DLL, 0);
}

TEST(DllFile, ExportsTheFourEntryPointsOfAComServerAndNothingElse)
{
    EXPECT_THAT(DllFile().ExportedNames(), UnorderedElementsAre("DllCanUnloadNow", "DllGetClassObject",
                                                                "DllRegisterServer", "DllUnregisterServer"));
    EXPECT_EQ(DllFile().ExportedFunctions(), 4u) << "an export without a name";
}

TEST(DllFile, NeedsOnlyDllsThatEveryWindowsHas)
{
    const std::vector<std::string> modules = DllFile().ImportedModules();
    EXPECT_FALSE(modules.empty());
    EXPECT_THAT(modules,
                Each(AnyOf(StrCaseEq("advapi32.dll"), StrCaseEq("kernel32.dll"), StrCaseEq("msvcrt.dll"),
                           StrCaseEq("ole32.dll"), StrCaseEq("oleaut32.dll"), StrCaseEq("propsys.dll"),
                           StrCaseEq("shell32.dll"), StrCaseEq("shlwapi.dll"), StrCaseEq("user32.dll"),
                           StrCaseEq("windowscodecs.dll"))));
}

TEST(DllFile, LoadsAtRandomAddressesAboveFourGigabytes)
{
    const WORD wanted = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA;
    EXPECT_EQ(DllFile().optionalHeader.DllCharacteristics & wanted, wanted);
    // The flags alone move nothing: without relocations the file can be loaded at one place only.
    EXPECT_EQ(DllFile().fileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
    EXPECT_GT(DllFile().Directory(IMAGE_DIRECTORY_ENTRY_BASERELOC).Size, 0u);
}

TEST(DllFile, NeverRunsDataAsCode)
{
    EXPECT_NE(DllFile().optionalHeader.DllCharacteristics & IMAGE_DLLCHARACTERISTICS_NX_COMPAT, 0);
}

TEST(DllFile, CarriesTheVersionOfTheProject)
{
    const VersionResource resource;
    const VS_FIXEDFILEINFO fixed = resource.Fixed();
    const DWORD majorAndMinor = DWORD{LUMORA_VERSION_MAJOR} << 16 | DWORD{LUMORA_VERSION_MINOR};
    const DWORD patch = DWORD{LUMORA_VERSION_PATCH} << 16;
    EXPECT_EQ(fixed.dwSignature, 0xFEEF04BDu);
    EXPECT_EQ(fixed.dwFileVersionMS, majorAndMinor);
    EXPECT_EQ(fixed.dwFileVersionLS, patch);
    EXPECT_EQ(fixed.dwProductVersionMS, majorAndMinor);
    EXPECT_EQ(fixed.dwProductVersionLS, patch);
    EXPECT_EQ(fixed.dwFileType, DWORD{VFT_DLL});

    const std::wstring version = std::to_wstring(LUMORA_VERSION_MAJOR) + L"." +
                                 std::to_wstring(LUMORA_VERSION_MINOR) + L"." +
                                 std::to_wstring(LUMORA_VERSION_PATCH);
    EXPECT_EQ(resource.Text(L"FileVersion"), version);
    EXPECT_EQ(resource.Text(L"ProductVersion"), version);
    EXPECT_EQ(resource.Text(L"LegalCopyright"), L"Copyright (c) 2026 The Lumora authors");
}

TEST(DllFile, NamesItselfInItsProperties)
{
    const VersionResource resource;
    EXPECT_EQ(resource.Text(L"ProductName"), L"Lumora");
    EXPECT_EQ(resource.Text(L"OriginalFilename"), L"Lumora.dll");
    EXPECT_FALSE(resource.Text(L"FileDescription").empty());
}
