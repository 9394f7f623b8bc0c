#include "lumora/commands/InfoCommand.h"

#include "lumora/console/Failure.h"
#include "lumora/console/JsonWriter.h"
#include "lumora/files/FileLoop.h"
#include "lumora/pictures/PropertyReader.h"
#include "platform/ComPtr.h"
#include "registration/ClassIds.h"

#include <windows.h>

#include <objbase.h>

namespace Lumora {

namespace {

void RequireRegistration()
{
    ComPtr<IClassFactory> factory;
    const HRESULT result = CoGetClassObject(CLSID_LumoraPropertyHandler, CLSCTX_INPROC_SERVER, nullptr,
                                            IID_IClassFactory, factory.PutVoid());
    if (result == REGDB_E_CLASSNOTREG)
        throw Failure{notRegistered};
    Require(result, L"cannot start Lumora's property handler");
}

std::wstring ForPeople(const SourceFile& file, const std::vector<PropertyReading>& readings)
{
    constexpr size_t labelColumns = 16;
    std::wstring text = file.name + L'\n';
    for (const PropertyReading& reading : readings)
    {
        std::wstring label = reading.label;
        label.resize(labelColumns, L' ');
        text += L"  " + label;
        if (const uint32_t* const number = std::get_if<uint32_t>(&reading.value))
            text += std::to_wstring(*number);
        else if (const std::wstring* const words = std::get_if<std::wstring>(&reading.value);
                 words && !words->empty())
            text += *words;
        else
            text += L'-';
        text += L'\n';
    }
    return text;
}

void ForPrograms(JsonWriter& json, const SourceFile& file, const std::vector<PropertyReading>& readings)
{
    json.BeginObject();
    json.Text(L"path", file.name);
    for (const PropertyReading& reading : readings)
    {
        if (const uint32_t* const number = std::get_if<uint32_t>(&reading.value))
            json.Number(reading.name, *number);
        else if (const std::wstring* const words = std::get_if<std::wstring>(&reading.value))
            json.Text(reading.name, *words);
        else
            json.Null(reading.name);
    }
    json.EndObject();
}

int PrintForPeople(const CommandLine& line, Console& console)
{
    return ForEachFile(
        FindFiles(line.paths, FolderRule::ReadableToo, console), line, console,
        [&console](const SourceFile& file) { console.Print(ForPeople(file, ReadProperties(file.path))); });
}

int PrintForPrograms(const CommandLine& line, Console& console)
{
    JsonWriter json;
    json.BeginArray();
    const int exitCode = ForEachFile(
        FindFiles(line.paths, FolderRule::ReadableToo, console), line, console,
        [&](const SourceFile& file) {
            ForPrograms(json, file, ReadProperties(file.path));
            console.Print(json.Take());
        },
        [&](const SourceFile& file, const std::optional<std::wstring>& failure) {
            if (!failure)
                return;
            json.BeginObject();
            json.Text(L"path", file.name);
            json.Text(L"error", *failure);
            json.EndObject();
        });
    json.EndArray();
    console.Print(json.Take() + L'\n');
    return exitCode;
}

} // namespace

int RunInfo(const CommandLine& line, Console& console)
{
    RequireRegistration();
    return line.wantsJson ? PrintForPrograms(line, console) : PrintForPeople(line, console);
}

} // namespace Lumora
