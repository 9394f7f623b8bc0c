#pragma once

#include <windows.h>

#include <msi.h>
#include <msiquery.h>

#include <string>

namespace Lumora {

/// The installation that has called an action of this library.
class InstallerSession
{
public:
    explicit InstallerSession(MSIHANDLE installation) noexcept : handle(installation) {}

    /// The value of an installer property; empty if it is not set.
    [[nodiscard]] std::wstring Property(const wchar_t* name) const;

    /// Writes a line to the installer's log.
    void Log(const std::wstring& text) const noexcept;

    /// Writes a line to the log and, unless the installation is silent, shows it.
    void ShowError(const wchar_t* text) const noexcept;

private:
    void Send(INSTALLMESSAGE kind, const wchar_t* text) const noexcept;

    MSIHANDLE handle;
};

} // namespace Lumora
