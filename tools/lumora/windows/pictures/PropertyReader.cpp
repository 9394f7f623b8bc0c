#include "lumora/pictures/PropertyReader.h"

#include "lumora/console/Failure.h"
#include "lumora/windows/pictures/HdfTurn.h"
#include "metadata/PropertyKeys.h"
#include "platform/ComPtr.h"
#include "registration/ClassIds.h"

#include <windows.h>

#include <objbase.h>
#include <propsys.h>
#include <shlwapi.h>

namespace Lumora {

using namespace Tav::Imaging::RawImage;

namespace {

/// A value that is freed when it is no longer needed.
class ClearedVariant
{
public:
    ClearedVariant() noexcept { PropVariantInit(&variant); }
    ClearedVariant(const ClearedVariant&) = delete;
    ClearedVariant& operator=(const ClearedVariant&) = delete;
    ~ClearedVariant() { PropVariantClear(&variant); }

    PROPVARIANT variant;
};

/// A property handler that has read the file. Throws a Failure.
ComPtr<IInitializeWithStream> HandlerOf(const std::wstring& path)
{
    // A program that is writing the file can continue.
    ComPtr<IStream> stream;
    Require(SHCreateStreamOnFileEx(path.c_str(), STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr,
                                   stream.Put()),
            L"cannot open the file");
    ComPtr<IInitializeWithStream> handler;
    Require(CoCreateInstance(CLSID_LumoraPropertyHandler, nullptr, CLSCTX_INPROC_SERVER,
                             IID_IInitializeWithStream, handler.PutVoid()),
            L"cannot start Lumora's property handler");
    Require(handler->Initialize(stream.Get(), STGM_READ), L"the property handler could not read the file");
    return handler;
}

} // namespace

void RequirePropertyHandler()
{
    ComPtr<IClassFactory> factory;
    const HRESULT result = CoGetClassObject(CLSID_LumoraPropertyHandler, CLSCTX_INPROC_SERVER, nullptr,
                                            IID_IClassFactory, factory.PutVoid());
    if (result == REGDB_E_CLASSNOTREG)
        throw Failure{notRegistered};
    Require(result, L"cannot start Lumora's property handler");
}

FileProperties ReadProperties(const std::wstring& path)
{
    ComPtr<IInitializeWithStream> handler;
    ReadInTurn([&] { handler = HandlerOf(path); });
    ComPtr<IPropertyStore> store;
    Require(handler->QueryInterface(IID_IPropertyStore, store.PutVoid()), L"cannot ask for properties");

    FileProperties properties;
    for (const KeyedProperty& keyed : keyedProperties)
    {
        ClearedVariant value;
        if (FAILED(store->GetValue(keyed.key, &value.variant)))
            continue;
        if (value.variant.vt == VT_UI4)
            properties[keyed.property] = uint32_t{value.variant.ulVal};
        else if (value.variant.vt == VT_LPWSTR)
            properties[keyed.property] = std::wstring(value.variant.pwszVal);
    }
    return properties;
}

} // namespace Lumora
