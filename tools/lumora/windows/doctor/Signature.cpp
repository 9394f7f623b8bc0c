#include "lumora/windows/doctor/Signature.h"

#include "lumora/windows/Results.h"

#include <windows.h>

#include <softpub.h>
#include <wintrust.h>

#include <array>

namespace Lumora {

namespace {

/// Whether the file has no signature at all, of which these are the results.
bool IsUnsigned(HRESULT result) noexcept
{
    return result == TRUST_E_NOSIGNATURE || result == TRUST_E_SUBJECT_FORM_UNKNOWN ||
           result == TRUST_E_PROVIDER_UNKNOWN;
}

/// Windows' examination of one file, whose findings stay until this ends.
class Examination
{
public:
    explicit Examination(const std::wstring& path)
    {
        file.cbStruct = sizeof(file);
        file.pcwszFilePath = path.c_str();
        request.cbStruct = sizeof(request);
        request.dwUIChoice = WTD_UI_NONE;
        request.fdwRevocationChecks = WTD_REVOKE_NONE;
        request.dwUnionChoice = WTD_CHOICE_FILE;
        request.pFile = &file;
        request.dwStateAction = WTD_STATEACTION_VERIFY;
        request.dwProvFlags = WTD_CACHE_ONLY_URL_RETRIEVAL;
        result = Run();
    }
    Examination(const Examination&) = delete;
    Examination& operator=(const Examination&) = delete;
    ~Examination()
    {
        request.dwStateAction = WTD_STATEACTION_CLOSE;
        static_cast<void>(Run());
    }

    [[nodiscard]] HRESULT Result() const noexcept { return result; }

    /// The name of the first signer; empty if there is none.
    [[nodiscard]] std::wstring Signer() const
    {
        CRYPT_PROVIDER_DATA* const data = WTHelperProvDataFromStateData(request.hWVTStateData);
        const CRYPT_PROVIDER_SGNR* const signer =
            data ? WTHelperGetProvSignerFromChain(data, 0, FALSE, 0) : nullptr;
        if (!signer || signer->csCertChain == 0)
            return {};
        std::array<wchar_t, 256> name = {};
        CertGetNameStringW(signer->pasCertChain[0].pCert, CERT_NAME_SIMPLE_DISPLAY_TYPE, 0, nullptr,
                           name.data(), static_cast<DWORD>(name.size()));
        return name.data();
    }

private:
    HRESULT Run()
    {
        GUID action = WINTRUST_ACTION_GENERIC_VERIFY_V2;
        return WinVerifyTrust(nullptr, &action, &request);
    }

    WINTRUST_FILE_INFO file = {};
    WINTRUST_DATA request = {};
    HRESULT result = S_OK;
};

} // namespace

std::wstring Signature::Words() const
{
    if (signer.empty() && doubt.empty())
        return L"there is none";
    return (signer.empty() ? L"of an unknown signer" : L"of " + signer) +
           (doubt.empty() ? L"" : L", but " + doubt);
}

Signature SignatureOf(const std::wstring& path)
{
    const Examination examination(path);
    Signature signature = {examination.Signer(), {}};
    if (FAILED(examination.Result()) && !IsUnsigned(examination.Result()))
        signature.doubt = DescribeResult(examination.Result());
    return signature;
}

} // namespace Lumora
