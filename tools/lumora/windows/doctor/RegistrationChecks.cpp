#include "lumora/windows/doctor/RegistrationChecks.h"

#include "lumora/files/Paths.h"
#include "lumora/windows/Results.h"
#include "lumora/windows/doctor/DllFile.h"
#include "lumora/windows/doctor/Signature.h"
#include "registration/ClassIds.h"
#include "registration/Registration.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Lumora {

namespace {

struct NamedClass
{
    const wchar_t* name;
    GUID id;
};

constexpr NamedClass classes[] = {
    {L"decoder", CLSID_LumoraDecoder},
    {L"property handler", CLSID_LumoraPropertyHandler},
};

/// The path under which COM finds a class; nothing when there is none.
std::optional<std::wstring> ServerPath(Scope scope, View view, REFGUID classId)
{
    std::optional<RegistryValue> value;
    if (ServerKey(scope, view, classId).Read({}, value) != ERROR_SUCCESS || !value)
        return std::nullopt;
    std::wstring path = value->AsText();
    return path.empty() ? std::nullopt : std::optional(std::move(path));
}

/// The DLLs that are registered for our classes; one, unless something is wrong.
std::vector<std::wstring> RegisteredDlls(Scope scope)
{
    std::vector<std::wstring> paths;
    for (const NamedClass& known : classes)
    {
        const std::optional<std::wstring> path = ServerPath(scope, View::SixtyFourBit, known.id);
        if (path && std::find(paths.begin(), paths.end(), *path) == paths.end())
            paths.push_back(*path);
    }
    return paths;
}

/// What may keep Windows from loading a DLL without a trusted signature; null if nothing does. Windows keeps
/// the state of Smart App Control as a number.
const wchar_t* WhatBlocksUntrustedDlls()
{
    const RegistryKey policy({HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\CI\\Policy"}, {});
    std::optional<RegistryValue> state;
    if (policy.Read(L"VerifiedAndReputablePolicyState", state) != ERROR_SUCCESS || !state)
        return nullptr;
    if (*state == RegistryValue::Number(1))
        return L"Smart App Control is on, which may block it";
    if (*state == RegistryValue::Number(2))
        return L"Smart App Control is trying out whether to block it";
    return nullptr;
}

const wchar_t* Subject(Scope scope) noexcept
{
    return scope == Scope::User ? L"registration for you" : L"registration for all users";
}

class RegistrationChecks
{
public:
    RegistrationChecks(const std::wstring& givenDllPath, Diagnosis& doctorsDiagnosis)
        : diagnosis(doctorsDiagnosis), isWantedGiven(!givenDllPath.empty()),
          wanted(FullPath(isWantedGiven ? givenDllPath : JoinPath(ProgramFolder(), L"Lumora.dll"))),
          wantedDefect(DefectOfDll(wanted))
    {}

    RegistrationFindings Run()
    {
        const std::vector<std::wstring> ofMachine = RegisteredDlls(Scope::Machine);
        const std::vector<std::wstring> ofUser = RegisteredDlls(Scope::User);
        findings.isRegistered = !ofMachine.empty() || !ofUser.empty();
        if (!findings.isRegistered)
        {
            CheckUnregistered();
            return std::move(findings);
        }
        findings.scope = ofMachine.empty() ? Scope::User : Scope::Machine;
        findings.isUsable = true;
        const std::vector<std::wstring>& dlls = ofMachine.empty() ? ofUser : ofMachine;
        CheckTable(dlls.front());
        for (const std::wstring& path : dlls)
            CheckDll(path);
        if (findings.scope == Scope::Machine)
            CheckHiding(dlls.front(), ofUser);
        else
            diagnosis.Note(L"properties", L"Windows takes them from a registration for all users alone",
                           L"All is well for you, but files have thumbnails and no properties: these need "
                           L"\"lumora register\" as administrator.");
        return std::move(findings);
    }

private:
    void CheckUnregistered()
    {
        for (const NamedClass& known : classes)
        {
            for (const Scope scope : {Scope::User, Scope::Machine})
            {
                if (const auto path = ServerPath(scope, View::ThirtyTwoBit, known.id))
                    diagnosis.Problem(Cause::NoRegistration, known.name,
                                      L"is registered for 32-bit programs alone: " + *path,
                                      L"Lumora is registered for 32-bit programs alone: " + RunRegister(L""));
            }
        }
        if (wantedDefect)
            diagnosis.Problem(Cause::UnusableDll, L"Lumora.dll", wanted + L' ' + *wantedDefect,
                              wanted + L' ' + *wantedDefect + L": copy Lumora.dll there and " +
                                  RunRegister(L""));
        else
            diagnosis.Ok(L"Lumora.dll", wanted);
        diagnosis.Problem(Cause::NoRegistration, L"registration", L"there is none",
                          L"Lumora is not registered: " + RunRegister(L""));
    }

    /// One of the DLLs that are registered in the scope that counts.
    void CheckDll(const std::wstring& path)
    {
        const bool isWanted = AreSameName(FullPath(path), wanted);
        if (const std::optional<std::wstring> defect = isWanted ? wantedDefect : DefectOfDll(path))
        {
            findings.isUsable = false;
            diagnosis.Problem(Cause::RegisteredDll, L"Lumora.dll", path + L' ' + *defect,
                              L"The registration names " + path + L", which " + *defect + L": " +
                                  (wantedDefect ? L"copy Lumora.dll there again." : RunRegister(L" again")));
        }
        else if (isWanted)
        {
            diagnosis.Ok(L"Lumora.dll", path);
            CheckSignature(path);
        }
        else if (!wantedDefect)
            diagnosis.Problem(Cause::OtherDll, L"Lumora.dll", path + L" is registered and not " + wanted,
                              L"The registration names " + path + L" and not " + wanted + L": " +
                                  RunRegister(L" again"));
        else if (isWantedGiven)
            diagnosis.Problem(Cause::UnusableDll, L"Lumora.dll", wanted + L' ' + *wantedDefect,
                              wanted + L' ' + *wantedDefect + L"; registered is " + path + L'.');
        else
            diagnosis.Note(L"Lumora.dll", path + L" is registered; " + wanted + L' ' + *wantedDefect);
    }

    void CheckSignature(const std::wstring& path)
    {
        const Signature signature = SignatureOf(path);
        const bool isTrusted = !signature.signer.empty() && signature.doubt.empty();
        const wchar_t* const blocker = isTrusted ? nullptr : WhatBlocksUntrustedDlls();
        if (blocker)
            diagnosis.Note(L"signature", signature.Words() + L", and " + blocker);
        else if (!signature.doubt.empty())
            diagnosis.Note(L"signature", signature.Words());
        else
            diagnosis.Ok(L"signature", signature.Words());
    }

    /// Compares the values in the scope that counts with the table for the DLL that is registered there.
    /// CheckDll checks whether this is the right DLL.
    void CheckTable(const std::wstring& path)
    {
        const wchar_t* const subject = Subject(findings.scope);
        RegistrationState state = CheckRegistration(findings.scope, path);
        NoteWhatIsLeft(state);
        CheckReading(state);
        if (!state.missing.empty())
            diagnosis.Problem(Cause::IncompleteRegistration, subject, L"without " + FirstOf(state.missing),
                              std::wstring(L"The ") + subject + L" is not complete: " +
                                  RunRegister(L" again"));
        if (!state.outdated.empty())
            diagnosis.Problem(Cause::IncompleteRegistration, subject, L"outdated: " + FirstOf(state.outdated),
                              std::wstring(L"The ") + subject + L" is of another version: " +
                                  RunRegister(L" again"));
        if (state.IsComplete())
        {
            std::wstring detail = std::to_wstring(state.inPlace) + L" entries";
            for (const std::wstring& choice : Describe(PresentChoices(findings.scope)))
                detail += L"; " + choice;
            diagnosis.Ok(subject, detail);
        }
    }

    /// Checks the user's values that differ from the machine's, because Windows reads the user's values
    /// first.
    void CheckHiding(const std::wstring& machinesPath, const std::vector<std::wstring>& ofUser)
    {
        const wchar_t* const subject = Subject(Scope::User);
        RegistrationState state = CheckRegistration(Scope::User, machinesPath);
        NoteWhatIsLeft(state);
        CheckReading(state);
        if (!state.outdated.empty())
            diagnosis.Problem(Cause::HidingRegistration, subject,
                              L"hides the one for all users: " + FirstOf(state.outdated),
                              L"The registration for you hides the one for all users, from which it differs: "
                              L"run \"lumora unregister --user\".");
        else if (!ofUser.empty())
            diagnosis.Ok(subject, L"names the same DLL");
        for (const std::wstring& path : ofUser)
            findings.isUsable = findings.isUsable && !DefectOfDll(path);
    }

    void CheckReading(const RegistrationState& state)
    {
        if (!state.failure)
            return;
        const std::wstring what =
            state.failure->key + L": " + DescribeError(static_cast<DWORD>(state.failure->error));
        diagnosis.Problem(Cause::UnreadableRegistry, L"registry", what,
                          L"Windows does not let this be read: " + what + L'.');
    }

    void NoteWhatIsLeft(const RegistrationState& state)
    {
        for (const std::wstring& name : state.leftToOthers)
            diagnosis.Note(L"left to another program", name);
        findings.leftToOthers.insert(findings.leftToOthers.end(), state.leftToOthers.begin(),
                                     state.leftToOthers.end());
    }

    /// Says how to register; `how` follows the command.
    [[nodiscard]] std::wstring RunRegister(const wchar_t* how) const
    {
        const bool isForUser = findings.scope == Scope::User;
        return std::wstring(L"run \"lumora register") + (isForUser ? L" --user" : L"") +
               (isWantedGiven ? L" --dll " + wanted : L"") + L"\"" + how +
               (isForUser ? L"." : L" as administrator.");
    }

    Diagnosis& diagnosis;
    RegistrationFindings findings;
    bool isWantedGiven;
    /// The DLL that should be registered.
    std::wstring wanted;
    std::optional<std::wstring> wantedDefect;
};

} // namespace

RegistrationFindings CheckRegistrations(const std::wstring& givenDllPath, Diagnosis& diagnosis)
{
    return RegistrationChecks(givenDllPath, diagnosis).Run();
}

} // namespace Lumora
