#include "setup/SetupData.h"

#include <map>
#include <optional>
#include <sstream>

namespace Lumora {

SetupData ReadSetupData(const std::wstring& text)
{
    SetupData data;
    std::wistringstream items(text);
    // The path comes first and cannot contain the separator, so no choice can replace it.
    std::getline(items, data.dllPath, L'|');
    std::map<std::wstring, std::wstring> values;
    for (std::wstring item; std::getline(items, item, L'|');)
    {
        const size_t sign = item.find(L'=');
        if (sign != std::wstring::npos)
            values.emplace(item.substr(0, sign), item.substr(sign + 1));
        else
            data.mistake = L"a choice cannot contain the sign |, which stands before \"" + item + L'"';
    }

    for (const Choice& choice : AllChoices())
    {
        const std::wstring name = choice.property;
        // A value that this version no longer knows stands for no choice.
        if (const std::wstring& kept = values[L"KEPT" + name]; !kept.empty())
            static_cast<void>(choice.take(data.choices, kept));
        const std::wstring& made = values[name];
        if (made.empty())
            continue;
        if (const std::optional<std::wstring> refusal = choice.take(data.choices, made))
            data.mistake.assign(name).append(L": ").append(*refusal);
    }
    return data;
}

} // namespace Lumora
