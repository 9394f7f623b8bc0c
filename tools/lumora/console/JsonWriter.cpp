#include "lumora/console/JsonWriter.h"

#include "lumora/console/Unicode.h"

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
    if (!isFirst && layout == Layout::Lines)
        text += L'\n' + std::wstring(2 * depth, L' ');
    text += L']';
    isFirst = false;
}

void JsonWriter::Text(std::wstring_view name, std::wstring_view value)
{
    Name(name);
    Quoted(value);
}

void JsonWriter::Texts(std::wstring_view name, const std::vector<std::wstring>& values)
{
    Name(name);
    text += L'[';
    for (const std::wstring& value : values)
    {
        if (&value != &values.front())
            text += L", ";
        Quoted(value);
    }
    text += L']';
}

void JsonWriter::Number(std::wstring_view name, uint64_t value)
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
    for (size_t index = 0; index < value.size(); ++index)
    {
        const wchar_t character = value[index];
        const bool isPair =
            IsHighSurrogate(character) && index + 1 < value.size() && IsLowSurrogate(value[index + 1]);
        if (character == L'"' || character == L'\\')
            text += L'\\';
        // Half of a pair, which the name of a file may hold, cannot be written as UTF-8.
        if (character < 0x20 || (IsSurrogate(character) && !isPair))
            Escaped(character);
        else
            text += character;
        if (isPair)
            text += value[++index];
    }
    text += L'"';
}

void JsonWriter::Escaped(wchar_t character)
{
    std::array<wchar_t, 7> escape = {};
    std::swprintf(escape.data(), escape.size(), L"\\u%04x", static_cast<unsigned>(character));
    text += escape.data();
}

void JsonWriter::BeginLine()
{
    if (layout == Layout::OneLine)
    {
        text += isFirst ? L"" : L", ";
        return;
    }
    text += isFirst ? L"\n" : L",\n";
    text.append(2 * depth, L' ');
}

} // namespace Lumora
