#include "windows/clients/PropertyStoreClient.h"

#include "registration/ClassIds.h"
#include "windows/clients/LumoraModule.h"

#include <gtest/gtest.h>

#include <propidl.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr GUID imageSummary = {0x6444048F, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
constexpr GUID mediaSummary = {0x64440492, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
constexpr GUID documentSummary = {
    0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}};

} // namespace

const std::array<PROPERTYKEY, 8> servedKeys = {{
    {imageSummary, 3},
    {imageSummary, 4},
    {imageSummary, 13},
    {imageSummary, 12},
    {mediaSummary, 37},
    {mediaSummary, 27},
    {imageSummary, 7},
    {documentSummary, 6},
}};

ComPtr<IPropertyStore> NewPropertyStore()
{
    return LumoraModule::Shared().Create<IPropertyStore>(CLSID_LumoraPropertyHandler, IID_IPropertyStore);
}

HRESULT Initialize(const ComPtr<IPropertyStore>& store, IStream* stream, DWORD mode)
{
    ComPtr<IInitializeWithStream> initializer;
    if (store->QueryInterface(IID_IInitializeWithStream, initializer.PutVoid()) != S_OK)
        return E_NOINTERFACE;
    return initializer->Initialize(stream, mode);
}

PropertyValue ValueOf(const ComPtr<IPropertyStore>& store, const PROPERTYKEY& key)
{
    // What stood there before must not shine through.
    PROPVARIANT variant;
    std::memset(&variant, 0xEE, sizeof(variant));
    const HRESULT result = store->GetValue(key, &variant);
    PropertyValue value;
    if (result == S_OK && variant.vt == VT_UI4)
        value = variant.ulVal;
    else if (result == S_OK && variant.vt == VT_LPWSTR)
        value = std::wstring(variant.pwszVal);
    else
        EXPECT_TRUE(result == E_INVALIDARG && variant.vt == VT_EMPTY) << result << ' ' << variant.vt;
    PropVariantClear(&variant);
    return value;
}

std::array<PropertyValue, 8> ValuesOf(const ComPtr<IPropertyStore>& store)
{
    std::array<PropertyValue, 8> values;
    std::transform(servedKeys.begin(), servedKeys.end(), values.begin(),
                   [&store](const PROPERTYKEY& key) { return ValueOf(store, key); });
    return values;
}
