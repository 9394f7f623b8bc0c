#include "lumora/windows/doctor/ClassChecks.h"

#include "lumora/windows/Results.h"
#include "platform/ComPtr.h"
#include "registration/ClassIds.h"

#include <windows.h>

#include <propsys.h>
#include <wincodec.h>

namespace Lumora {

namespace {

template <typename Interface>
void CheckClass(const wchar_t* what, REFCLSID classId, REFIID interfaceId, Scope scope, Diagnosis& diagnosis)
{
    ComPtr<Interface> object;
    const HRESULT result =
        CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, interfaceId, object.PutVoid());
    if (SUCCEEDED(result))
    {
        diagnosis.Ok(what, L"starts");
        return;
    }
    const std::wstring why = DescribeResult(result);
    diagnosis.Problem(Cause::Class, what, L"cannot be started: " + why,
                      scope == Scope::User && result == REGDB_E_CLASSNOTREG
                          ? L"The registration for you does not count for a program with administrator "
                            L"rights: run \"lumora doctor\" without them."
                          : std::wstring(L"Windows cannot start Lumora's ") + what + L": " + why + L'.');
}

} // namespace

bool CheckClasses(const Imaging& imaging, Scope scope, Diagnosis& diagnosis)
{
    CheckClass<IWICBitmapDecoder>(L"decoder", CLSID_LumoraDecoder, IID_IWICBitmapDecoder, scope, diagnosis);
    CheckClass<IPropertyStore>(L"property handler", CLSID_LumoraPropertyHandler, IID_IPropertyStore, scope,
                               diagnosis);
    const auto failure = FailureOf([&imaging] { imaging.RequireDecoder(); });
    if (failure)
        diagnosis.Problem(Cause::Class, L"WIC", *failure,
                          L"WIC does not find the decoder: " + *failure + L'.');
    else
        diagnosis.Ok(L"WIC", L"knows the decoder");
    return !failure;
}

} // namespace Lumora
