#include "lumora/batch/JsonLine.h"

namespace Lumora {

std::wstring JsonLine(const SourceFile& file, const FileReport& report, bool withTargets)
{
    JsonWriter json(JsonWriter::Layout::OneLine);
    json.BeginObject();
    json.Text(L"path", file.name);
    if (report.fileSize)
        json.Number(L"fileSize", *report.fileSize);
    else
        json.Null(L"fileSize");
    WriteProperties(json, report.properties.value_or(FileProperties()));
    if (withTargets)
    {
        json.BeginArray(L"targets");
        for (const PictureReport& picture : report.pictures)
        {
            json.BeginObject();
            json.Text(L"path", picture.name);
            json.Number(L"width", picture.width);
            json.Number(L"height", picture.height);
            json.Truth(L"skipped", picture.isSkipped);
            json.EndObject();
        }
        json.EndArray();
    }
    json.Texts(L"lines", report.lines);
    json.Number(L"milliseconds", report.milliseconds);
    if (report.failure)
        json.Text(L"error", *report.failure);
    else
        json.Null(L"error");
    json.EndObject();
    return json.Take() + L'\n';
}

void WriteProperties(JsonWriter& json, const FileProperties& properties)
{
    for (const PropertyName& property : propertyNames)
    {
        const PropertyValue& value = properties[property.property];
        if (const uint32_t* const number = std::get_if<uint32_t>(&value))
            json.Number(property.name, *number);
        else if (const std::wstring* const words = std::get_if<std::wstring>(&value))
            json.Text(property.name, *words);
        else
            json.Null(property.name);
    }
}

} // namespace Lumora
