#include "com/MyClassFactory.h"
#include "com/WicBitmapDecoder.h"
#include "metadata/PropertyStore.h"
#include "registration/ClassIds.h"

#include <shlobj.h>

#include <new>

namespace {

template <typename Class, typename Interface>
HRESULT Create(IUnknown** object)
{
    auto* const created = new (std::nothrow) Class;
    if (!created)
        return E_OUTOFMEMORY;
    *object = static_cast<Interface*>(created);
    return S_OK;
}

MyClassFactory::CreateFunction CreateFunctionOf(REFCLSID rclsid)
{
    if (rclsid == CLSID_LumoraDecoder)
        return Create<WicBitmapDecoder, IWICBitmapDecoder>;
    if (rclsid == CLSID_LumoraPropertyHandler)
        return Create<PropertyStore, IInitializeWithStream>;
    return nullptr;
}

} // namespace

// The exports are named in Exports.def; the Windows headers declare the first two.

STDAPI DllGetClassObject(REFCLSID rclsid, REFIID riid, void** ppv)
{
    if (!ppv)
        return E_INVALIDARG;
    *ppv = nullptr;
    // COM asks for IID_IClassFactory. Everything else is refused on purpose, IID_IUnknown too.
    if (riid != IID_IClassFactory)
        return E_INVALIDARG;
    const MyClassFactory::CreateFunction create = CreateFunctionOf(rclsid);
    if (!create)
        return CLASS_E_CLASSNOTAVAILABLE;
    auto* const factory = new (std::nothrow) MyClassFactory(create);
    if (!factory)
        return E_OUTOFMEMORY;
    *ppv = static_cast<IClassFactory*>(factory);
    return S_OK;
}

STDAPI DllCanUnloadNow()
{
    return objectCount != 0 || lockCount != 0 ? S_FALSE : S_OK;
}

/// Writes nothing, because the installer registers. Makes the shell read its associations again.
STDAPI DllRegisterServer()
{
    SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr);
    return S_OK;
}

STDAPI DllUnregisterServer()
{
    return S_OK;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*)
{
    if (reason == DLL_PROCESS_ATTACH)
        DisableThreadLibraryCalls(instance);
    return TRUE;
}
