#include "JsonWriter.h"

#include <array>
#include <cwchar>
#include <utility>

namespace Lumora {

void JsonWriter::BeginObject()
{
    text += isFirstObject ? L"\n  {" : L",\n  {";
    isFirstObject = false;
    isFirstMember = true;
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

void JsonWriter::Null(std::wstring_view name)
{
    Name(name);
    text += L"null";
}

void JsonWriter::EndObject()
{
    text += L'}';
}

std::wstring JsonWriter::Take()
{
    return std::exchange(text, {});
}

std::wstring JsonWriter::Finish()
{
    text += L"\n]\n";
    return Take();
}

void JsonWriter::Name(std::wstring_view name)
{
    if (!isFirstMember)
        text += L", ";
    isFirstMember = false;
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

} // namespace Lumora
