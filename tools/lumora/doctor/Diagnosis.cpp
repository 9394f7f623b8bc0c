#include "lumora/doctor/Diagnosis.h"

#include <utility>

namespace Lumora {

void Diagnosis::BeginFile(const std::wstring& name)
{
    files.push_back({name, {}});
}

void Diagnosis::Ok(const wchar_t* what, const std::wstring& detail)
{
    Add({what, CheckState::Ok, detail});
}

void Diagnosis::Note(const wchar_t* what, const std::wstring& detail, const std::wstring& adviceIfWell)
{
    Add({what, CheckState::Note, detail});
    if (!worst && advice.empty())
        advice = adviceIfWell;
}

void Diagnosis::Problem(Cause cause, const wchar_t* what, const std::wstring& detail,
                        const std::wstring& whatToDo)
{
    Add({what, CheckState::Problem, detail});
    if (worst && *worst <= cause)
        return;
    worst = cause;
    advice = whatToDo;
}

void Diagnosis::Add(Check check)
{
    (files.empty() ? checks : files.back().checks).push_back(std::move(check));
}

std::wstring FirstOf(const std::vector<std::wstring>& names)
{
    return names.front() +
           (names.size() == 1 ? L"" : L" and " + std::to_wstring(names.size() - 1) + L" more");
}

} // namespace Lumora
