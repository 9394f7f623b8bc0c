#include "registration/RegistryTable.h"

#include "registration/ClassIds.h"
#include "registration/Formats.h"
#include "registration/RegistryRows.h"

#include <objbase.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>
#include <variant>

namespace Lumora {

using Tav::Imaging::RawImage::HeaderPattern;

namespace {

/// The key that stores the choices. The setup package reads it before it replaces an older version.
constexpr const wchar_t* choicesKey = L"Lumora";

struct OwnTree
{
    Branch branch;
    const wchar_t* key;
};

// Keys in which everything is ours.
constexpr OwnTree ownTrees[] = {
    {Branch::Classes, L"CLSID\\%decoders%\\Instance\\%decoder%"},
    {Branch::Classes, L"CLSID\\%decoder%"},
    {Branch::Classes, L"CLSID\\%handler%"},
    {Branch::Software, choicesKey},
};

using Substitution = std::pair<std::wstring_view, std::wstring>;

std::wstring GuidText(const GUID& guid)
{
    std::array<wchar_t, 39> text = {};
    StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
    return text.data();
}

void AppendToList(std::wstring& list, const wchar_t* item)
{
    if (!list.empty())
        list += L',';
    list += item;
}

bool Contains(const ExtensionNames& names, const wchar_t* extension)
{
    return std::find(names.begin(), names.end(), extension) != names.end();
}

/// The replacements of the names that do not depend on an extension.
std::vector<Substitution> Placeholders(const std::wstring& dllPath, const Choices& choices)
{
    std::wstring extensions;
    std::wstring mimeTypes;
    for (const Format& format : Formats())
    {
        AppendToList(mimeTypes, format.mimeType);
        for (const Extension& extension : format.extensions)
        {
            if (!Contains(choices.leftOut, extension.text))
                AppendToList(extensions, extension.text);
        }
    }
    return {
        {L"%decoder%", GuidText(CLSID_LumoraDecoder)},
        {L"%handler%", GuidText(CLSID_LumoraPropertyHandler)},
        {L"%container%", GuidText(GUID_ContainerFormatLumora)},
        {L"%vendor%", GuidText(GUID_VendorLumora)},
        {L"%decoders%", L"{7ED96837-96F0-4812-B211-F13C24117ED3}"},        // CATID_WICBitmapDecoders
        {L"%8bppGray%", L"{6FDDC324-4E03-4BFE-B185-3D77768DC908}"},        // GUID_WICPixelFormat8bppGray
        {L"%24bppRGB%", L"{6FDDC324-4E03-4BFE-B185-3D77768DC90D}"},        // GUID_WICPixelFormat24bppRGB
        {L"%thumbnails%", L"{e357fccd-a995-4576-b01f-234630154e96}"},      // IID_IThumbnailProvider
        {L"%photoThumbnails%", L"{C7657C4A-9F68-40fa-A4DF-96BC08EB3551}"}, // PhotoThumbnailProvider
        {L"%extensions%", extensions},
        {L"%mimeTypes%", mimeTypes},
        {L"%dll%", dllPath},
    };
}

/// The text with each name replaced once. Names in a replacement are not replaced.
std::wstring Substitute(std::wstring_view text, const std::vector<Substitution>& substitutions)
{
    std::wstring result;
    while (!text.empty())
    {
        const Substitution* found = nullptr;
        for (const Substitution& candidate : substitutions)
        {
            if (text.starts_with(candidate.first))
                found = &candidate;
        }
        result += found ? std::wstring_view(found->second) : text.substr(0, 1);
        text.remove_prefix(found ? found->first.size() : 1);
    }
    return result;
}

RegistryBranch BranchOf(Branch branch, Scope scope)
{
    switch (branch)
    {
    case Branch::PropertyHandlers:
        return {HKEY_LOCAL_MACHINE,
                L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\PropertySystem\\PropertyHandlers"};
    case Branch::Kinds:
        return {HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\KindMap"};
    case Branch::Microsoft:
        return {HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft"};
    case Branch::Software:
        return {scope == Scope::User ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE, L"SOFTWARE"};
    default:
        return {scope == Scope::User ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes"};
    }
}

/// Whether a row is for an extension, whatever has been chosen.
bool Concerns(For subject, const Extension& extension)
{
    const bool isForOwn = subject == For::Pictures || subject == For::PhotoViewer;
    return subject != For::Classes && (extension.use == Use::Own || !isForOwn);
}

bool IsChosen(For subject, const Extension& extension, const Choices& choices)
{
    if (Contains(choices.leftOut, extension.text))
        return false;
    switch (subject)
    {
    case For::Properties:
        return extension.use != Use::AnyData || Contains(choices.withProperties, extension.text);
    case For::Pictures:
        return choices.arePictures;
    case For::PhotoViewer:
        return choices.areInPhotoViewer;
    default:
        return true;
    }
}

/// Whether Windows reads a row's branch in a registration of that scope.
bool IsRead(Branch branch, Scope scope)
{
    return scope == Scope::Machine || branch == Branch::Classes;
}

RegistryEntry MakeEntry(const Row& row, Scope scope, const std::vector<Substitution>& substitutions,
                        const wchar_t* extension)
{
    RegistryEntry entry = {RegistryKey(BranchOf(row.branch, scope), Substitute(row.key, substitutions)),
                           Substitute(row.name, substitutions),
                           {},
                           std::nullopt,
                           row.subject == For::Classes,
                           extension};
    if (const uint32_t* const number = std::get_if<uint32_t>(&row.value))
        entry.value = RegistryValue::Number(*number);
    else
        entry.value = RegistryValue::Text(Substitute(std::get<const wchar_t*>(row.value), substitutions));
    if (row.earlierText)
        entry.earlierValue = RegistryValue::Text(row.earlierText);
    return entry;
}

void AppendClasses(std::vector<RegistryEntry>& entries, Scope scope,
                   const std::vector<Substitution>& substitutions)
{
    for (const Row& row : RegistryRows())
    {
        if (row.subject == For::Classes)
            entries.push_back(MakeEntry(row, scope, substitutions, L""));
    }
}

/// Appends the entry of each choice that is not the usual one.
void AppendChoices(std::vector<RegistryEntry>& entries, Scope scope, const Choices& choices)
{
    for (const Choice& choice : AllChoices())
    {
        const std::wstring value = choice.valueIn(choices);
        if (value != choice.valueIn({}))
            entries.push_back({RegistryKey(BranchOf(Branch::Software, scope), choicesKey),
                               choice.storedName,
                               RegistryValue::Text(value),
                               std::nullopt,
                               true,
                               {}});
    }
}

void AppendPatterns(std::vector<RegistryEntry>& entries, Scope scope)
{
    const std::wstring patternsKey = L"CLSID\\" + GuidText(CLSID_LumoraDecoder) + L"\\Patterns\\";
    const std::vector<HeaderPattern> patterns = HeaderPatterns();
    for (size_t i = 0; i < patterns.size(); ++i)
    {
        const RegistryKey key(BranchOf(Branch::Classes, scope), patternsKey + std::to_wstring(i));
        entries.push_back({key, L"Position", RegistryValue::Number(0), std::nullopt, true, {}});
        entries.push_back(
            {key, L"Length", RegistryValue::Number(HeaderPattern::size), std::nullopt, true, {}});
        entries.push_back(
            {key, L"Pattern", RegistryValue::Binary(patterns[i].bytes), std::nullopt, true, {}});
        entries.push_back({key, L"Mask", RegistryValue::Binary(patterns[i].mask), std::nullopt, true, {}});
        entries.push_back({key, L"EndOfStream", RegistryValue::Number(0), std::nullopt, true, {}});
    }
}

/// Appends the rows that `counts` takes for an extension, for each extension of the formats.
template <typename Predicate>
void AppendExtensions(std::vector<RegistryEntry>& entries, Scope scope,
                      const std::vector<Substitution>& placeholders, const Predicate& counts)
{
    for (const Format& format : Formats())
    {
        for (const Extension& extension : format.extensions)
        {
            std::vector<Substitution> substitutions = placeholders;
            substitutions.emplace_back(L"%ext%", extension.text);
            substitutions.emplace_back(L"%mimeType%", format.mimeType);
            for (const Row& row : RegistryRows())
            {
                if (IsRead(row.branch, scope) && Concerns(row.subject, extension) &&
                    counts(row.subject, extension))
                    entries.push_back(MakeEntry(row, scope, substitutions, extension.text));
            }
        }
    }
}

} // namespace

std::vector<RegistryEntry> RegistryEntries(Scope scope, const std::wstring& dllPath, const Choices& choices)
{
    const std::vector<Substitution> placeholders = Placeholders(dllPath, choices);
    std::vector<RegistryEntry> entries;
    // The choices come first, so that they are not lost if a later entry cannot be written.
    AppendChoices(entries, scope, choices);
    AppendPatterns(entries, scope);
    AppendClasses(entries, scope, placeholders);
    AppendExtensions(entries, scope, placeholders, [&choices](For subject, const Extension& extension) {
        return IsChosen(subject, extension, choices);
    });
    return entries;
}

std::vector<RegistryEntry> EntriesToRemove(Scope scope, const Choices& written, const Choices& wanted)
{
    std::vector<RegistryEntry> entries;
    AppendExtensions(entries, scope, Placeholders({}, wanted), [&](For subject, const Extension& extension) {
        return IsChosen(subject, extension, written) && !IsChosen(subject, extension, wanted);
    });
    return entries;
}

bool IsRegistered(Scope scope)
{
    const std::wstring path = L"CLSID\\" + GuidText(CLSID_LumoraDecoder);
    const RegistryKey decoder = ClassesKey(scope, path);
    std::optional<RegistryValue> name;
    return decoder.Read({}, name) == ERROR_SUCCESS && name;
}

Choices PresentChoices(Scope scope)
{
    const RegistryKey key(BranchOf(Branch::Software, scope), choicesKey);
    Choices choices;
    for (const Choice& choice : AllChoices())
    {
        std::optional<RegistryValue> stored;
        // A value that cannot be taken stands for no choice.
        if (key.Read(choice.storedName, stored) == ERROR_SUCCESS && stored)
            static_cast<void>(choice.take(choices, stored->AsText()));
    }
    return choices;
}

Choices WrittenChoices(Scope scope)
{
    Choices choices = PresentChoices(scope);
    // Version 0.1.0 registered properties of all files. Nobody else writes such values.
    choices.withProperties.clear();
    for (const Format& format : Formats())
    {
        for (const Extension& extension : format.extensions)
        {
            if (extension.use == Use::AnyData)
                choices.withProperties.emplace_back(extension.text);
        }
    }
    return choices;
}

RegistryKey ClassesKey(Scope scope, std::wstring_view path)
{
    return {BranchOf(Branch::Classes, scope), path};
}

RegistryKey ServerKey(Scope scope, View view, REFGUID classId)
{
    const wchar_t* const classes = view == View::ThirtyTwoBit ? L"WOW6432Node\\CLSID\\" : L"CLSID\\";
    return {BranchOf(Branch::Classes, scope), classes + GuidText(classId) + L"\\InprocServer32"};
}

std::vector<RegistryKey> OwnTrees(Scope scope)
{
    const std::vector<Substitution> placeholders = Placeholders({}, {});
    std::vector<RegistryKey> trees;
    for (const OwnTree& tree : ownTrees)
        trees.emplace_back(BranchOf(tree.branch, scope), Substitute(tree.key, placeholders));
    return trees;
}

} // namespace Lumora
