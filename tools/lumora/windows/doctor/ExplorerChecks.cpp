#include "lumora/windows/doctor/ExplorerChecks.h"

#include "lumora/files/Paths.h"
#include "registration/Formats.h"
#include "registration/Registration.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace Lumora {

namespace {

/// A number that turns thumbnails off where it is not zero.
struct Setting
{
    RegistryBranch key;
    const wchar_t* name;
    const wchar_t* advice;
};

constexpr const wchar_t* policyAdvice =
    L"A policy turns Explorer's thumbnails off: whoever administers this machine can change it.";

// The table is not constexpr, because the names of the hives are not constants for the compiler.
const Setting settings[] = {
    {{HKEY_CURRENT_USER, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Advanced"},
     L"IconsOnly",
     L"Explorer shows icons only: in its folder options, turn off \"Always show icons, never thumbnails\"."},
    {{HKEY_CURRENT_USER, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer"},
     L"DisableThumbnails",
     policyAdvice},
    {{HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer"},
     L"DisableThumbnails",
     policyAdvice},
};

/// Whether a value of the registration, by its name for people, belongs to the extension.
bool IsAbout(std::wstring_view valueName, std::wstring_view extension)
{
    while (!valueName.empty())
    {
        const size_t end = std::min(valueName.find_first_of(L"\\,"), valueName.size());
        if (AreSameName(valueName.substr(0, end), extension))
            return true;
        valueName.remove_prefix(std::min(valueName.find_first_not_of(L"\\, ", end), valueName.size()));
    }
    return false;
}

/// The registration's entry that names the extension's thumbnail provider; nothing if the extension is left
/// out.
std::optional<RegistryEntry> ThumbnailEntry(const wchar_t* extension, Scope scope)
{
    const std::wstring path = ClassesKey(scope, extension).FullPath() + L"\\ShellEx\\";
    for (const RegistryEntry& entry : RegistryEntries(scope, {}, PresentChoices(scope)))
    {
        if (entry.key.FullPath().starts_with(path))
            return entry;
    }
    return std::nullopt;
}

/// The thumbnail provider that the shell would use for the extension, by all of its own rules.
std::wstring ShellsThumbnailProvider(const wchar_t* extension, const RegistryEntry& entry)
{
    const std::wstring key = entry.key.FullPath();
    const std::wstring interfaceId = key.substr(key.rfind(L'\\') + 1);
    std::array<wchar_t, 64> provider = {};
    auto length = static_cast<DWORD>(provider.size());
    const HRESULT result = AssocQueryStringW(ASSOCF_NONE, ASSOCSTR_SHELLEXTENSION, extension,
                                             interfaceId.c_str(), provider.data(), &length);
    return SUCCEEDED(result) ? provider.data() : L"";
}

/// What Explorer does not do for the files of a registered extension.
std::wstring Restriction(const Extension& extension, Scope scope)
{
    switch (extension.use)
    {
    case Use::Own:
        break;
    case Use::Shared:
        return L", which files of other kinds have too";
    case Use::AnyData:
        const ExtensionNames chosen = PresentChoices(scope).withProperties;
        if (std::ranges::find(chosen, extension.text) != chosen.end())
            break;
        // A registration for the user has no properties.
        return std::wstring(L" for thumbnails alone") +
               (scope == Scope::User ? L""
                                     : std::wstring(L": \"lumora register --with ") + extension.text +
                                           L"\" as administrator adds properties");
    }
    return {};
}

void CheckThumbnailProvider(const wchar_t* extension, const RegistryEntry& entry, Diagnosis& diagnosis)
{
    const std::wstring provider = ShellsThumbnailProvider(extension, entry);
    if (provider.empty())
        diagnosis.Note(L"thumbnails", L"the shell knows no program that makes them");
    else if (AreSameName(provider, entry.value.AsText()))
        diagnosis.Ok(L"thumbnails", L"WIC gives the thumbnails");
    else
        diagnosis.Problem(Cause::Extension, L"thumbnails", L"another program makes them: " + provider,
                          std::wstring(L"The thumbnails of ") + extension +
                              L" files are another program's, which has the class " + provider +
                              L": its settings may let you turn that off.");
}

} // namespace

void CheckProcessor(Diagnosis& diagnosis)
{
    // The machine's own environment: to a program for x64, Windows on ARM64 pretends to be one for x64, too.
    const RegistryKey environment(
        {HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment"}, {});
    std::optional<RegistryValue> processor;
    if (environment.Read(L"PROCESSOR_ARCHITECTURE", processor) == ERROR_SUCCESS && processor &&
        AreSameName(processor->AsText(), L"ARM64"))
        diagnosis.Problem(Cause::Processor, L"processor",
                          L"ARM64: Explorer cannot load Lumora.dll, which is for x64",
                          L"This machine has an ARM64 processor, and its Explorer cannot load a DLL for x64: "
                          L"there are no thumbnails. Programs for x64 that ask WIC show the pictures.");
}

void CheckExplorerSettings(Diagnosis& diagnosis)
{
    bool isOff = false;
    for (const Setting& setting : settings)
    {
        const RegistryKey key(setting.key, {});
        std::optional<RegistryValue> value;
        if (key.Read(setting.name, value) != ERROR_SUCCESS || !value || value->type != REG_DWORD ||
            *value == RegistryValue::Number(0))
            continue;
        isOff = true;
        diagnosis.Problem(Cause::Explorer, L"Explorer",
                          L"shows no thumbnails: " + key.FullPath() + L", " + setting.name, setting.advice);
    }
    if (!isOff)
        diagnosis.Ok(L"Explorer", L"shows thumbnails");
}

void CheckExtension(const std::wstring& fileName, const RegistrationFindings& findings, Diagnosis& diagnosis)
{
    const std::wstring shown(FileExtension(fileName));
    const Extension* const extension = RegisteredExtension(shown);
    if (!extension)
    {
        const std::wstring files = shown.empty() ? L"files without an extension" : shown + L" files";
        diagnosis.Note(L"extension",
                       L"Explorer is told nothing about " + files +
                           L"; those that Lumora reads open in programs that ask WIC",
                       L"All is well, but Explorer is told nothing about " + files +
                           L" and takes no thumbnails of them from Lumora: those that Lumora reads open in "
                           L"programs that ask WIC.");
        return;
    }
    const std::optional<RegistryEntry> entry = ThumbnailEntry(extension->text, findings.scope);
    if (!entry)
    {
        diagnosis.Note(L"extension", shown + L" is left out of the registration on purpose",
                       L"All is well, but " + shown +
                           L" is left out of the registration on purpose: \"lumora register --without none\" "
                           L"takes it in.");
        return;
    }
    bool isOurs = true;
    for (const std::wstring& name : findings.leftToOthers)
    {
        if (!IsAbout(name, extension->text))
            continue;
        isOurs = false;
        diagnosis.Problem(Cause::Extension, L"extension", L"left to another program: " + name,
                          L"Another program has set " + name + L": if " + extension->text +
                              L" files should be Lumora's, delete that value and run \"lumora register\" "
                              L"again.");
    }
    if (isOurs)
        diagnosis.Ok(L"extension", extension->text + std::wstring(L" is registered") +
                                       Restriction(*extension, findings.scope));
    CheckThumbnailProvider(extension->text, *entry, diagnosis);
}

} // namespace Lumora
