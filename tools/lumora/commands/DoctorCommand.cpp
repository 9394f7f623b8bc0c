#include "lumora/commands/DoctorCommand.h"

#include "lumora/console/JsonWriter.h"
#include "lumora/console/Progress.h"
#include "lumora/doctor/Diagnosis.h"
#include "lumora/doctor/SystemChecks.h"
#include "lumora/files/FileSource.h"

namespace Lumora {

namespace {

const wchar_t* NameOf(CheckState state) noexcept
{
    switch (state)
    {
    case CheckState::Ok:
        return L"ok";
    case CheckState::Note:
        return L"note";
    case CheckState::Problem:
        break;
    }
    return L"problem";
}

std::wstring AdviceOf(const Diagnosis& diagnosis)
{
    if (!diagnosis.Advice().empty())
        return diagnosis.Advice();
    return diagnosis.Files().empty() ? SystemChecks::allIsWell : SystemChecks::allFilesAreWell;
}

std::wstring Line(CheckState state, const std::wstring& what, const std::wstring& detail)
{
    constexpr size_t stateColumns = 9;
    std::wstring text = NameOf(state);
    text.resize(stateColumns, L' ');
    return text + what + L": " + detail + L'\n';
}

/// All checks that are ok share one line. Every other check has its own line.
std::wstring ForPeople(const FileChecks& file)
{
    std::wstring good;
    std::wstring rest;
    for (const Check& check : file.checks)
    {
        if (check.state == CheckState::Ok)
            good += (good.empty() ? L"" : L"; ") + check.detail;
        else
            rest += Line(check.state, file.name + L": " + check.what, check.detail);
    }
    return (good.empty() ? L"" : Line(CheckState::Ok, file.name, good)) + rest;
}

std::wstring ForPeople(const Diagnosis& diagnosis)
{
    std::wstring text;
    for (const Check& check : diagnosis.Checks())
        text += Line(check.state, check.what, check.detail);
    for (const FileChecks& file : diagnosis.Files())
        text += ForPeople(file);
    return text + L'\n' + AdviceOf(diagnosis) + L'\n';
}

void Write(JsonWriter& json, const std::vector<Check>& checks)
{
    json.BeginArray(L"checks");
    for (const Check& check : checks)
    {
        json.BeginObject();
        json.Text(L"what", check.what);
        json.Text(L"state", NameOf(check.state));
        json.Text(L"detail", check.detail);
        json.EndObject();
    }
    json.EndArray();
}

std::wstring ForPrograms(const Diagnosis& diagnosis)
{
    JsonWriter json;
    json.BeginObject();
    json.Truth(L"allIsWell", diagnosis.IsAllWell());
    json.Text(L"advice", AdviceOf(diagnosis));
    Write(json, diagnosis.Checks());
    json.BeginArray(L"files");
    for (const FileChecks& file : diagnosis.Files())
    {
        json.BeginObject();
        json.Text(L"path", file.name);
        Write(json, file.checks);
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
    return json.Take() + L'\n';
}

} // namespace

int RunDoctor(const CommandLine& line, Console& console)
{
    Diagnosis diagnosis;
    const FileList list = AllFilesOf({line.paths, nullptr, nullptr});
    for (const SourceFile& missing : list.failures)
        console.Complain(L"lumora: " + missing.name + L": " + *missing.failure);
    if (!list.failures.empty())
        diagnosis.Problem(Cause::File, L"files", L"not all that were named are there",
                          L"Not all of the files that were named are there.");
    const SystemChecks checks(line, diagnosis);

    Progress progress(console);
    size_t done = 0;
    for (const SourceFile& file : list.files)
    {
        diagnosis.BeginFile(file.name);
        checks.CheckFile(file, diagnosis);
        progress.Show(++done, list.files.size(), file.name);
    }
    console.Print(line.wantsJson ? ForPrograms(diagnosis) : ForPeople(diagnosis));
    return diagnosis.IsAllWell() ? 0 : 1;
}

} // namespace Lumora
