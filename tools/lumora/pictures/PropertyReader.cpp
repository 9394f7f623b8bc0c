#include "lumora/pictures/PropertyReader.h"

#include "lumora/console/Failure.h"
#include "metadata/PropertyKeys.h"
#include "platform/ComPtr.h"
#include "registration/ClassIds.h"

#include <windows.h>

#include <propsys.h>
#include <shlwapi.h>

#include <iterator>

namespace Lumora {

using namespace Tav::Imaging::RawImage;

namespace {

struct NamedProperty
{
    PROPERTYKEY key;
    const wchar_t* label;
    const wchar_t* name;
};

/// In the order of the output.
constexpr NamedProperty namedProperties[] = {
    {KeyOf(MetadataProperty::Dimensions), L"Dimensions", L"dimensions"},
    {KeyOf(MetadataProperty::Width), L"Width", L"width"},
    {KeyOf(MetadataProperty::Height), L"Height", L"height"},
    {KeyOf(MetadataProperty::FrameCount), L"Frames", L"frameCount"},
    {KeyOf(MetadataProperty::BitDepth), L"Bit depth", L"bitDepth"},
    {KeyOf(MetadataProperty::PixelFormat), L"Pixel type", L"pixelType"},
    {KeyOf(MetadataProperty::Software), L"Software", L"software"},
    {KeyOf(MetadataProperty::FormatDetails), L"Format details", L"formatDetails"},
};
static_assert(std::size(namedProperties) == metadataPropertyCount);

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
