#include "lumora/windows/RegisterCommand.h"

#include "lumora/files/Paths.h"
#include "lumora/windows/Results.h"
#include "registration/Registration.h"

#include <windows.h>

#include <optional>
#include <utility>

namespace Lumora {

namespace {

const wchar_t* ForWhom(Scope scope) noexcept
{
    return scope == Scope::User ? L"for you" : L"for all users of this machine";
}

/// The DLL that is to be registered, as a full path.
std::wstring FindDll(const CommandLine& line)
{
    std::wstring path =
        FullPath(line.dllPath.empty() ? JoinPath(ProgramFolder(), L"Lumora.dll") : line.dllPath);
    const DWORD attributes = GetFileAttributesW(OpenablePath(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        throw Failure{L"there is no " + path + (line.dllPath.empty() ? L"; --dll names another place" : L"")};
    return path;
}

std::wstring Describe(const RegistrationFailure& failure, const wchar_t* what, Scope scope)
{
    const auto error = static_cast<DWORD>(failure.error);
    std::wstring text = std::wstring(what) + L' ' + failure.key + L": " + DescribeError(error);
    if (error == ERROR_ACCESS_DENIED && scope == Scope::Machine)
        text += L". This needs administrator rights: start lumora from an elevated prompt, or use --user";
    return text;
}

void List(Console& console, const wchar_t* what, const std::vector<std::wstring>& names)
{
    for (const std::wstring& name : names)
        console.Print(std::wstring(what) + L": " + name + L'\n');
}

/// What the present registration has chosen, and what the user chooses now. Throws a Failure for a value that
/// cannot be taken.
Choices ChoicesOf(const CommandLine& line)
{
    Choices choices = PresentChoices(line.scope);
    for (const auto& [property, value] : line.choices)
    {
        if (std::optional<std::wstring> refusal = Choose(choices, property, value))
            throw Failure{std::move(*refusal)};
    }
    return choices;
}

void Print(Console& console, const Choices& choices)
{
    for (const std::wstring& sentence : Describe(choices))
        console.Print(sentence + L'\n');
}

int Check(const CommandLine& line, const std::wstring& dllPath, Console& console)
{
    const RegistrationState state = CheckRegistration(line.scope, dllPath);
    List(console, L"Missing", state.missing);
    List(console, L"Outdated", state.outdated);
    List(console, L"Left to another program", state.leftToOthers);
    Print(console, PresentChoices(line.scope));
    if (state.failure)
        throw Failure{Describe(*state.failure, L"cannot read", line.scope)};
    console.Print(std::wstring(L"Lumora is ") + (state.IsComplete() ? L"" : L"not completely ") +
                  L"registered " + ForWhom(line.scope) + L": " + dllPath + L'\n');
    return state.IsComplete() ? 0 : 1;
}

} // namespace

int RunRegister(const CommandLine& line, Console& console)
{
    const std::wstring dllPath = FindDll(line);
    if (line.onlyCheck)
        return Check(line, dllPath, console);

    const Choices choices = ChoicesOf(line);
    const RegistrationResult result = Register(line.scope, dllPath, choices);
    if (result.failure)
        throw Failure{Describe(*result.failure, L"cannot write", line.scope)};
    console.Print(std::wstring(L"Lumora is registered ") + ForWhom(line.scope) + L": " + dllPath + L'\n');
    List(console, L"Left to another program", result.leftToOthers);
    Print(console, choices);
    if (line.scope == Scope::User)
        console.Print(
            L"Windows takes the properties and the kinds of files from the machine alone: these need "
            L"a registration for all users.\n");
    return 0;
}

int RunUnregister(const CommandLine& line, Console& console)
{
    const RegistrationResult result = Unregister(line.scope);
    if (result.failure)
        throw Failure{Describe(*result.failure, L"cannot remove", line.scope)};
    console.Print(std::wstring(L"Lumora is not registered ") + ForWhom(line.scope) + L" any more.\n");
    List(console, L"Left to another program", result.leftToOthers);
    return 0;
}

} // namespace Lumora
