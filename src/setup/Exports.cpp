#include "platform/SystemText.h"
#include "registration/Registration.h"
#include "setup/InstallerSession.h"
#include "setup/SetupData.h"

#include <exception>
#include <string>

// The actions run without a console and without a window. They tell the installer what they do, and the
// installer writes it to its log.

using Lumora::InstallerSession;

namespace {

/// Does the work of an action, which returns what went wrong, or nothing.
UINT Run(MSIHANDLE installation, std::wstring (*work)(const InstallerSession&)) noexcept
{
    const InstallerSession session(installation);
    try
    {
        const std::wstring failure = work(session);
        if (failure.empty())
            return ERROR_SUCCESS;
        session.ShowError(failure.c_str());
    }
    catch (const std::exception&)
    {
        session.ShowError(L"memory is exhausted");
    }
    return ERROR_INSTALL_FAILURE;
}

/// Logs what was left to other programs. Returns the failure in words, or nothing.
std::wstring Report(const InstallerSession& session, const wchar_t* what,
                    const Lumora::RegistrationResult& result)
{
    for (const std::wstring& name : result.leftToOthers)
        session.Log(L"left to another program: " + name);
    if (!result.failure)
        return {};
    const auto error = static_cast<DWORD>(result.failure->error);
    return std::wstring(what) + L' ' + result.failure->key + L": " + SystemText(error) + L" (error " +
           std::to_wstring(error) + L")";
}

std::wstring Check(const InstallerSession& session)
{
    return Lumora::ReadSetupData(session.Property(L"Register")).mistake;
}

std::wstring Register(const InstallerSession& session)
{
    const Lumora::SetupData data = Lumora::ReadSetupData(session.Property(L"CustomActionData"));
    if (!data.mistake.empty())
        return data.mistake;
    session.Log(L"registers " + data.dllPath);
    for (const std::wstring& sentence : Lumora::Describe(data.choices))
        session.Log(sentence);
    return Report(session, L"cannot write",
                  Lumora::Register(Lumora::Scope::Machine, data.dllPath, data.choices));
}

std::wstring Unregister(const InstallerSession& session)
{
    session.Log(L"removes the registration");
    return Report(session, L"cannot remove", Lumora::Unregister(Lumora::Scope::Machine));
}

} // namespace

/// Before anything is changed: fails if a choice of the administrator cannot be understood.
extern "C" UINT __stdcall CheckChoices(MSIHANDLE installation)
{
    return Run(installation, Check);
}

/// Writes the registration for all users.
extern "C" UINT __stdcall RegisterLumora(MSIHANDLE installation)
{
    return Run(installation, Register);
}

/// Removes the registration for all users.
extern "C" UINT __stdcall UnregisterLumora(MSIHANDLE installation)
{
    return Run(installation, Unregister);
}

/// Makes the shell of the user who installs read its associations again. The actions that change the registry
/// run as the system, so they cannot do it.
extern "C" UINT __stdcall TellTheShell(MSIHANDLE)
{
    Lumora::TellTheShell();
    return ERROR_SUCCESS;
}
