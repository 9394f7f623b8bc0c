#include "lumora/console/JsonWriter.h"

#include <array>
#include <cwchar>
#include <utility>

namespace Lumora {

void JsonWriter::BeginObject()
{
    if (depth > 0)
        BeginLine();
    text += L'{';
    isFirst = true;
}

void JsonWriter::EndObject()
{
    text += L'}';
    isFirst = false;
}

void JsonWriter::BeginArray()
{
    text += L'[';
    isFirst = true;
    ++depth;
}

void JsonWriter::BeginArray(std::wstring_view name)
{
    Name(name);
    BeginArray();
}

void JsonWriter::EndArray()
{
    --depth;
    // An empty array ends in the line in which it began.
    if (!isFirst)
        text += L'\n' + std::wstring(2 * depth, L' ');
    text += L']';
    isFirst = false;
}

void JsonWriter::Text(std::wstring_view name, std::wstring_view value)
{
    Name(name);
    Quoted(value);
}

void JsonWriter::Number(std::wstring_view name, uint32_t value)
{
    Name(name);
    text += std::to_wstring(value);
}

void JsonWriter::Truth(std::wstring_view name, bool value)
{
    Name(name);
    text += value ? L"true" : L"false";
}

void JsonWriter::Null(std::wstring_view name)
{
    Name(name);
    text += L"null";
}

std::wstring JsonWriter::Take()
{
    return std::exchange(text, {});
}

void JsonWriter::Name(std::wstring_view name)
{
    if (!isFirst)
        text += L", ";
    isFirst = false;
    Quoted(name);
    text += L": ";
}

void JsonWriter::Quoted(std::wstring_view value)
{
    text += L'"';
    for (const wchar_t character : value)
    {
        if (character == L'"' || character == L'\\')
        {
            text += L'\\';
            text += character;
        }
        else if (character < 0x20)
        {
            std::array<wchar_t, 7> escape = {};
            std::swprintf(escape.data(), escape.size(), L"\\u%04x", static_cast<unsigned>(character));
            text += escape.data();
        }
        else
        {
            text += character;
        }
    }
    text += L'"';
}

void JsonWriter::BeginLine()
{
    text += isFirst ? L"\n" : L",\n";
    text.append(2 * depth, L' ');
}

} // namespace Lumora
