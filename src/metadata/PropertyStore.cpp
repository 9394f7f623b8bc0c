#include "metadata/PropertyStore.h"

#include "core/Diagnostics.h"
#include "core/RawImage.h"
#include "metadata/PropertyKeys.h"
#include "platform/ComPtr.h"
#include "platform/ModuleCounters.h"

#include <shlwapi.h>

#include <algorithm>
#include <array>
#include <iterator>

using namespace Tav::Imaging::RawImage;

PropertyStore::PropertyStore() noexcept
{
    ++objectCount;
}

PropertyStore::~PropertyStore()
{
    --objectCount;
}

HRESULT PropertyStore::QueryInterface(REFIID riid, void** ppv)
{
    static const QITAB interfaces[] = {
        {&IID_IInitializeWithStream, static_cast<int>(OFFSETOFCLASS(IInitializeWithStream, PropertyStore))},
        {&IID_IPropertyStore, static_cast<int>(OFFSETOFCLASS(IPropertyStore, PropertyStore))},
        {&IID_IPropertyStoreCapabilities,
         static_cast<int>(OFFSETOFCLASS(IPropertyStoreCapabilities, PropertyStore))},
        {nullptr, 0},
    };
    return QISearch(this, interfaces, riid, ppv);
}

ULONG PropertyStore::AddRef()
{
    return ++refCount;
}

ULONG PropertyStore::Release()
{
    const uint32_t remaining = --refCount;
    if (remaining == 0)
        delete this;
    return remaining;
}

HRESULT PropertyStore::Initialize(IStream* stream, DWORD)
try
{
    if (!stream)
        return E_INVALIDARG;
    const ComPtr<IStream> held = ComPtr<IStream>::Share(stream);
    RawImage image;
    if (!OpenForMetadata(image, stream))
        return E_FAIL;
    metadata.FillFromImage(image);
    return S_OK;
}
catch (...)
{
    WriteDiagnostic(L"Exception in PropertyStore::Initialize( IStream *pStream, DWORD grfMode )");
    return E_FAIL;
}

HRESULT PropertyStore::GetCount(DWORD* count)
{
    if (!count)
        return E_POINTER;
    *count = static_cast<DWORD>(keyedProperties.size());
    return S_OK;
}

HRESULT PropertyStore::GetAt(DWORD index, PROPERTYKEY* key)
{
    if (!key)
        return E_POINTER;
    if (index >= keyedProperties.size())
        return E_INVALIDARG;
    *key = keyedProperties[index].key;
    return S_OK;
}

HRESULT PropertyStore::GetValue(REFPROPERTYKEY key, PROPVARIANT* value)
{
    if (!value)
        return E_POINTER;
    const auto* const shown = std::find_if(
        std::begin(keyedProperties), std::end(keyedProperties), [&key](const KeyedProperty& entry) {
            return entry.key.fmtid == key.fmtid && entry.key.pid == key.pid;
        });
    if (shown == std::end(keyedProperties))
        return E_INVALIDARG;
    return metadata.Get(shown->property, *value) ? S_OK : E_INVALIDARG;
}

HRESULT PropertyStore::SetValue(REFPROPERTYKEY, REFPROPVARIANT)
{
    return STG_E_ACCESSDENIED;
}

HRESULT PropertyStore::Commit()
{
    return STG_E_ACCESSDENIED;
}

HRESULT PropertyStore::IsPropertyWritable(REFPROPERTYKEY)
{
    return S_FALSE;
}
