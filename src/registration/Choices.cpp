#include "registration/Choices.h"

#include "registration/Formats.h"

#include <algorithm>
#include <sstream>

namespace Lumora {

namespace {

using Refusal = std::optional<std::wstring>;

Refusal WhyNotLeftOut(const std::wstring& name, const Extension* extension)
{
    if (extension)
        return std::nullopt;
    return L"the extension " + name + L" cannot be left out: Lumora never registers it";
}

Refusal WhyNoPropertiesOf(const std::wstring& name, const Extension* extension)
{
    if (extension && extension->use == Use::AnyData)
        return std::nullopt;
    return L"properties cannot be chosen for the extension " + name + L": " +
           (extension ? L"they are always registered" : L"Lumora never registers it");
}

Refusal TakeExtensions(ExtensionNames& target, std::wstring_view value,
                       Refusal (&whyNot)(const std::wstring&, const Extension*))
{
    std::wstring list(value == L"none" ? std::wstring_view() : value);
    std::ranges::replace(list, L',', L' ');
    std::ranges::replace(list, L';', L' ');
    std::wistringstream words(list);
    ExtensionNames names;
    for (std::wstring name; words >> name;)
    {
        if (!name.starts_with(L'.'))
            name.insert(0, 1, L'.');
        const Extension* const extension = RegisteredExtension(name);
        if (Refusal refusal = whyNot(name, extension))
            return refusal;
        if (std::ranges::find(names, extension->text) == names.end())
            names.emplace_back(extension->text);
    }
    target = std::move(names);
    return std::nullopt;
}

std::wstring Joined(const ExtensionNames& names)
{
    std::wstring list;
    for (const std::wstring& name : names)
        list += (list.empty() ? L"" : L",") + name;
    return list.empty() ? L"none" : list;
}

Refusal TakeSwitch(bool& target, std::wstring_view value)
{
    if (value != L"0" && value != L"1")
        return L"the choice is 0 or 1, and not \"" + std::wstring(value) + L'"';
    target = value == L"1";
    return std::nullopt;
}

std::wstring ShownSwitch(bool value)
{
    return value ? L"1" : L"0";
}

constexpr Choice choiceTable[] = {
    {L"WITHOUT", L"LeftOutExtensions",
     [](Choices& choices, std::wstring_view value) {
         return TakeExtensions(choices.leftOut, value, WhyNotLeftOut);
     },
     [](const Choices& choices) { return Joined(choices.leftOut); }},
    {L"WITH", L"PropertyExtensions",
     [](Choices& choices, std::wstring_view value) {
         return TakeExtensions(choices.withProperties, value, WhyNoPropertiesOf);
     },
     [](const Choices& choices) { return Joined(choices.withProperties); }},
    {L"PICTURES", L"Pictures",
     [](Choices& choices, std::wstring_view value) { return TakeSwitch(choices.arePictures, value); },
     [](const Choices& choices) { return ShownSwitch(choices.arePictures); }},
    {L"PHOTOVIEWER", L"PhotoViewer",
     [](Choices& choices, std::wstring_view value) { return TakeSwitch(choices.areInPhotoViewer, value); },
     [](const Choices& choices) { return ShownSwitch(choices.areInPhotoViewer); }},
};

} // namespace

std::span<const Choice> AllChoices() noexcept
{
    return choiceTable;
}

std::optional<std::wstring> Choose(Choices& choices, std::wstring_view property, std::wstring_view value)
{
    for (const Choice& choice : choiceTable)
    {
        if (property == choice.property)
            return choice.take(choices, value);
    }
    return L"there is no choice " + std::wstring(property);
}

std::vector<std::wstring> Describe(const Choices& choices)
{
    std::vector<std::wstring> sentences;
    if (!choices.leftOut.empty())
        sentences.push_back(L"Left out: " + Joined(choices.leftOut));
    if (!choices.withProperties.empty())
        sentences.push_back(L"With properties: " + Joined(choices.withProperties));
    if (!choices.arePictures)
        sentences.emplace_back(L"Not taken for pictures");
    if (choices.areInPhotoViewer)
        sentences.emplace_back(L"Offered in Windows Photo Viewer");
    return sentences;
}

} // namespace Lumora
