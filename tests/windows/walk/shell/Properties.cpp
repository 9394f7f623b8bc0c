#include "metadata/PropertyKeys.h"
#include "platform/ComPtr.h"
#include "registration/ClassIds.h"
#include "registration/Formats.h"
#include "windows/gauntlet/FilesBelow.h"
#include "windows/walk/shell/ShellSteps.h"

#include <windows.h>

#include <propsys.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <shobjidl.h>

namespace {

using Tav::Imaging::RawImage::keyedProperties;

/// The values that are served, in their order, as texts.
using Texts = std::vector<std::string>;

std::string TextOf(const PROPVARIANT& value)
{
    if (value.vt == VT_UI4)
        return std::to_string(value.ulVal);
    if (value.vt == VT_LPWSTR)
        return Utf8(value.pwszVal);
    if (value.vt == VT_EMPTY)
        return "nothing";
    return "a value of type " + std::to_string(value.vt);
}

Texts TextsOf(IPropertyStore* store)
{
    Texts texts;
    for (const auto& keyed : keyedProperties)
    {
        PROPVARIANT value{};
        const HRESULT result = store->GetValue(keyed.key, &value);
        texts.push_back(FAILED(result) ? HexCode(static_cast<unsigned long>(result)) : TextOf(value));
        PropVariantClear(&value);
    }
    return texts;
}

HRESULT AskHandler(const std::filesystem::path& file, ComPtr<IPropertyStore>& store)
{
    ComPtr<IStream> stream;
    HRESULT result = SHCreateStreamOnFileEx(file.c_str(), STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr,
                                            stream.Put());
    ComPtr<IInitializeWithStream> handler;
    if (SUCCEEDED(result))
        result = CoCreateInstance(CLSID_LumoraPropertyHandler, nullptr, CLSCTX_INPROC_SERVER,
                                  IID_IInitializeWithStream, handler.PutVoid());
    if (SUCCEEDED(result))
        result = handler->Initialize(stream.Get(), STGM_READ);
    if (SUCCEEDED(result))
        result = handler->QueryInterface(IID_IPropertyStore, store.PutVoid());
    return result;
}

void CheckPropertiesOf(Report& report, const Host& host, const std::filesystem::path& sample)
{
    const std::string step = "properties of " + Utf8(sample.filename());
    ComPtr<IPropertyStore> own;
    const HRESULT handlerResult = AskHandler(sample, own);
    if (FAILED(handlerResult))
    {
        report.Add(Verdict::Differs, step,
                   {"the handler gives none: " + HexCode(static_cast<unsigned long>(handlerResult))});
        return;
    }
    ComPtr<IPropertyStore> shells;
    const HRESULT result = SHGetPropertyStoreFromParsingName(sample.c_str(), nullptr, GPS_DEFAULT,
                                                             IID_IPropertyStore, shells.PutVoid());
    if (FAILED(result))
    {
        const std::string code = HexCode(static_cast<unsigned long>(result));
        if (host.isWine)
            report.Add(Verdict::NotChecked, step, {"Wine's shell has no property stores: " + code});
        else
            report.Add(Verdict::Differs, step, {"the shell gives none: " + code});
        return;
    }
    const Texts expected = TextsOf(own.Get());
    const Texts shown = TextsOf(shells.Get());
    std::vector<std::string> differences;
    for (size_t i = 0; i < expected.size(); ++i)
    {
        if (shown[i] != expected[i])
            differences.push_back("property " + std::to_string(keyedProperties[i].key.pid) +
                                  ": the shell says " + shown[i] + ", the handler " + expected[i]);
    }
    report.AddDifferences(step, differences);
}

} // namespace

void CheckProperties(Report& report, const Host& host, const std::filesystem::path& samples)
{
    for (const std::filesystem::path& sample : FilesBelow({samples.wstring()}))
    {
        // For other files, the shell does not ask Lumora.
        const Lumora::Extension* const extension = Lumora::RegisteredExtension(sample.extension().wstring());
        if (extension && extension->use != Lumora::Use::AnyData)
            CheckPropertiesOf(report, host, sample);
    }
}
