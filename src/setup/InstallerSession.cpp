#include "setup/InstallerSession.h"

namespace Lumora {

std::wstring InstallerSession::Property(const wchar_t* name) const
{
    std::wstring value;
    DWORD length = 0;
    if (MsiGetPropertyW(handle, name, value.data(), &length) != ERROR_MORE_DATA)
        return {};
    // The first length does not count the terminating zero, the second one must.
    value.resize(length++);
    if (MsiGetPropertyW(handle, name, value.data(), &length) != ERROR_SUCCESS)
        return {};
    return value;
}

void InstallerSession::Log(const std::wstring& text) const noexcept
{
    Send(INSTALLMESSAGE_INFO, text.c_str());
}

void InstallerSession::ShowError(const wchar_t* text) const noexcept
{
    Send(INSTALLMESSAGE_ERROR, text);
}

void InstallerSession::Send(INSTALLMESSAGE kind, const wchar_t* text) const noexcept
{
    // Field 0 is a template, in which brackets and braces have a meaning: so the text is not put there. Field
    // 1 is not used, because the installer takes a number in it for one of its own messages.
    PMSIHANDLE record = MsiCreateRecord(2);
    MsiRecordSetStringW(record, 0, L"Lumora: [2]");
    MsiRecordSetStringW(record, 2, text);
    MsiProcessMessage(handle, kind, record);
}

} // namespace Lumora
