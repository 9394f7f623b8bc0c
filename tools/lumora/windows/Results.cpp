#include "lumora/windows/Results.h"

#include "platform/SystemText.h"

#include <algorithm>
#include <iterator>

namespace Lumora {

namespace {

struct NamedResult
{
    HRESULT result;
    const wchar_t* name;
    const wchar_t* words;
};

constexpr HRESULT FromError(DWORD error) noexcept
{
    return static_cast<HRESULT>((error & 0xFFFF) | 0x80070000);
}

/// The results that WIC, the shell's streams and the registry are known to give.
constexpr NamedResult namedResults[] = {
    {E_FAIL, L"E_FAIL", L"the operation failed"},
    {E_INVALIDARG, L"E_INVALIDARG", L"an argument was not accepted"},
    {E_OUTOFMEMORY, L"E_OUTOFMEMORY", L"memory is exhausted"},
    {E_NOTIMPL, L"E_NOTIMPL", L"not implemented"},
    {E_NOINTERFACE, L"E_NOINTERFACE", L"an interface is missing"},
    {E_ACCESSDENIED, L"E_ACCESSDENIED", L"access is denied"},
    {E_UNEXPECTED, L"E_UNEXPECTED", L"an unexpected failure"},
    {REGDB_E_CLASSNOTREG, L"REGDB_E_CLASSNOTREG", L"the class is not registered"},
    {CLASS_E_CLASSNOTAVAILABLE, L"CLASS_E_CLASSNOTAVAILABLE", L"the DLL does not have the class"},
    {CO_E_DLLNOTFOUND, L"CO_E_DLLNOTFOUND", L"the registered DLL was not found"},
    {CO_E_ERRORINDLL, L"CO_E_ERRORINDLL", L"the registered DLL cannot be loaded"},
    {FromError(ERROR_FILE_NOT_FOUND), L"ERROR_FILE_NOT_FOUND", L"the file was not found"},
    {FromError(ERROR_PATH_NOT_FOUND), L"ERROR_PATH_NOT_FOUND", L"the folder was not found"},
    {FromError(ERROR_SHARING_VIOLATION), L"ERROR_SHARING_VIOLATION", L"another program holds the file"},
    {FromError(ERROR_DISK_FULL), L"ERROR_DISK_FULL", L"the disk is full"},
    {FromError(ERROR_HANDLE_DISK_FULL), L"ERROR_HANDLE_DISK_FULL", L"the disk is full"},
    {FromError(ERROR_INVALID_NAME), L"ERROR_INVALID_NAME", L"the name is not valid"},
    {FromError(ERROR_FILE_EXISTS), L"ERROR_FILE_EXISTS", L"the file exists"},
    {FromError(ERROR_ALREADY_EXISTS), L"ERROR_ALREADY_EXISTS", L"a file of that name exists"},
    {FromError(ERROR_FILENAME_EXCED_RANGE), L"ERROR_FILENAME_EXCED_RANGE", L"the name is too long"},
    {FromError(ERROR_MOD_NOT_FOUND), L"ERROR_MOD_NOT_FOUND", L"the DLL, or one that it needs, was not found"},
    {FromError(ERROR_BAD_EXE_FORMAT), L"ERROR_BAD_EXE_FORMAT", L"the DLL is not a 64-bit DLL"},
    {STG_E_FILENOTFOUND, L"STG_E_FILENOTFOUND", L"the file was not found"},
    {STG_E_PATHNOTFOUND, L"STG_E_PATHNOTFOUND", L"the folder was not found"},
    {STG_E_ACCESSDENIED, L"STG_E_ACCESSDENIED", L"access is denied"},
    {STG_E_SHAREVIOLATION, L"STG_E_SHAREVIOLATION", L"another program holds the file"},
    {STG_E_READFAULT, L"STG_E_READFAULT", L"reading failed"},
    {STG_E_WRITEFAULT, L"STG_E_WRITEFAULT", L"writing failed"},
    {STG_E_MEDIUMFULL, L"STG_E_MEDIUMFULL", L"the disk is full"},
    {TRUST_E_BAD_DIGEST, L"TRUST_E_BAD_DIGEST", L"the file has changed since it was signed"},
    {CERT_E_UNTRUSTEDROOT, L"CERT_E_UNTRUSTEDROOT", L"this machine does not know who vouches for the signer"},
    {CERT_E_EXPIRED, L"CERT_E_EXPIRED", L"the certificate has expired"},
    {WINCODEC_ERR_WRONGSTATE, L"WINCODEC_ERR_WRONGSTATE", L"the decoder refused the file"},
    {WINCODEC_ERR_COMPONENTNOTFOUND, L"WINCODEC_ERR_COMPONENTNOTFOUND", L"no codec knows the file"},
    {WINCODEC_ERR_COMPONENTINITIALIZEFAILURE, L"WINCODEC_ERR_COMPONENTINITIALIZEFAILURE",
     L"the codec cannot be started"},
    {WINCODEC_ERR_UNKNOWNIMAGEFORMAT, L"WINCODEC_ERR_UNKNOWNIMAGEFORMAT", L"the format is not known"},
    {WINCODEC_ERR_FRAMEMISSING, L"WINCODEC_ERR_FRAMEMISSING", L"there is no such frame"},
    {WINCODEC_ERR_BADIMAGE, L"WINCODEC_ERR_BADIMAGE", L"the picture is damaged"},
    {WINCODEC_ERR_BADHEADER, L"WINCODEC_ERR_BADHEADER", L"the header is damaged"},
    {WINCODEC_ERR_STREAMREAD, L"WINCODEC_ERR_STREAMREAD", L"reading failed"},
    {WINCODEC_ERR_STREAMWRITE, L"WINCODEC_ERR_STREAMWRITE", L"writing failed"},
    {WINCODEC_ERR_VALUEOUTOFRANGE, L"WINCODEC_ERR_VALUEOUTOFRANGE", L"a value is out of range"},
    {WINCODEC_ERR_IMAGESIZEOUTOFRANGE, L"WINCODEC_ERR_IMAGESIZEOUTOFRANGE", L"the picture is too large"},
    {WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT, L"WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT",
     L"the pixel format is not supported"},
    {WINCODEC_ERR_UNSUPPORTEDOPERATION, L"WINCODEC_ERR_UNSUPPORTEDOPERATION",
     L"the operation is not supported"},
    {WINCODEC_ERR_INSUFFICIENTBUFFER, L"WINCODEC_ERR_INSUFFICIENTBUFFER", L"a buffer is too small"},
};

} // namespace

std::wstring DescribeResult(HRESULT result)
{
    const auto* const named =
        std::find_if(std::begin(namedResults), std::end(namedResults),
                     [result](const NamedResult& candidate) { return candidate.result == result; });
    if (named != std::end(namedResults))
        return std::wstring(named->words) + L" (" + named->name + L")";
    const std::wstring words = SystemText(static_cast<DWORD>(result));
    return words.empty() ? HexText(static_cast<uint32_t>(result))
                         : words + L" (" + HexText(static_cast<uint32_t>(result)) + L")";
}

std::wstring DescribeError(DWORD error)
{
    return DescribeResult(FromError(error));
}

void Require(HRESULT result, const wchar_t* what)
{
    if (FAILED(result))
        throw Failure{std::wstring(what) + L": " + DescribeResult(result)};
}

} // namespace Lumora
