#include "lumora/pictures/ClearedVariant.h"
#include "lumora/pictures/OpenedFile.h"
#include "lumora/windows/Results.h"
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
    Require(handler->Initialize(stream.Get(), STGM_READ), cannotReadProperties);
    return handler;
}

} // namespace

FileProperties ReadProperties(Imaging&, const std::wstring& path)
{
    ComPtr<IInitializeWithStream> handler;
    ReadInTurn([&] { handler = HandlerOf(path); });
    ComPtr<IPropertyStore> store;
    Require(handler->QueryInterface(IID_IPropertyStore, store.PutVoid()), L"cannot ask for properties");

    FileProperties properties;
    for (const KeyedProperty& keyed : keyedProperties)
    {
        ClearedVariant value;
        if (SUCCEEDED(store->GetValue(keyed.key, &value.variant)))
            properties[keyed.property] = value.Value();
    }
    return properties;
}

} // namespace Lumora
