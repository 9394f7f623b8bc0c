#include "PropertyReader.h"

#include "Failure.h"
#include "platform/ComPtr.h"
#include "registration/ClassIds.h"

#include <windows.h>

#include <propsys.h>
#include <shlwapi.h>

namespace Lumora {

namespace {

constexpr GUID imageSummary = {0x6444048F, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
constexpr GUID mediaSummary = {0x64440492, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
constexpr GUID documentSummary = {
    0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}};

struct NamedProperty
{
    PROPERTYKEY key;
    const wchar_t* label;
    const wchar_t* name;
};

constexpr NamedProperty namedProperties[] = {
    {{imageSummary, 13}, L"Dimensions", L"dimensions"},          // System.Image.Dimensions
    {{imageSummary, 3}, L"Width", L"width"},                     // System.Image.HorizontalSize
    {{imageSummary, 4}, L"Height", L"height"},                   // System.Image.VerticalSize
    {{imageSummary, 12}, L"Frames", L"frameCount"},              // System.Media.FrameCount
    {{imageSummary, 7}, L"Bit depth", L"bitDepth"},              // System.Image.BitDepth
    {{mediaSummary, 37}, L"Pixel type", L"pixelType"},           // media summary property 37
    {{mediaSummary, 27}, L"Software", L"software"},              // System.Media.CreatorApplication
    {{documentSummary, 6}, L"Format details", L"formatDetails"}, // System.Comment
};

/// A value that is freed when it is no longer needed.
class PropertyValue
{
public:
    PropertyValue() noexcept { PropVariantInit(&variant); }
    PropertyValue(const PropertyValue&) = delete;
    PropertyValue& operator=(const PropertyValue&) = delete;
    ~PropertyValue() { PropVariantClear(&variant); }

    PROPVARIANT variant;
};

} // namespace

std::vector<PropertyReading> ReadProperties(const std::wstring& path)
{
    // Whoever is writing the file goes on writing.
    ComPtr<IStream> stream;
    Require(SHCreateStreamOnFileEx(path.c_str(), STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr,
                                   stream.Put()),
            L"cannot open the file");
    ComPtr<IInitializeWithStream> handler;
    Require(CoCreateInstance(CLSID_LumoraPropertyHandler, nullptr, CLSCTX_INPROC_SERVER,
                             IID_IInitializeWithStream, handler.PutVoid()),
            L"cannot start Lumora's property handler");
    Require(handler->Initialize(stream.Get(), STGM_READ), L"the property handler could not read the file");
    ComPtr<IPropertyStore> store;
    Require(handler->QueryInterface(IID_IPropertyStore, store.PutVoid()), L"cannot ask for properties");

    std::vector<PropertyReading> readings;
    for (const NamedProperty& property : namedProperties)
    {
        PropertyReading& reading = readings.emplace_back(PropertyReading{property.label, property.name, {}});
        PropertyValue value;
        if (FAILED(store->GetValue(property.key, &value.variant)))
            continue;
        if (value.variant.vt == VT_UI4)
            reading.value = uint32_t{value.variant.ulVal};
        else if (value.variant.vt == VT_LPWSTR)
            reading.value = std::wstring(value.variant.pwszVal);
    }
    return readings;
}

} // namespace Lumora
