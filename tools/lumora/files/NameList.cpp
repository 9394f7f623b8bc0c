#include "lumora/files/NameList.h"

#include "lumora/console/Failure.h"
#include "lumora/console/Unicode.h"
#include "lumora/files/NameText.h"
#include "lumora/files/Paths.h"

namespace Lumora {

namespace {

/// No path has more bytes, in any encoding.
constexpr size_t longestName = size_t{32'768} * 4;

/// From little-endian UTF-16.
std::wstring FromUtf16(const std::string& bytes)
{
    std::wstring text;
    for (size_t place = 0; place + 1 < bytes.size(); place += 2)
    {
        const auto low = static_cast<unsigned char>(bytes[place]);
        const auto high = static_cast<unsigned char>(bytes[place + 1]);
        AppendUtf16(text, static_cast<char16_t>(low | high << 8));
    }
    return text;
}

} // namespace

NameList::NameList(const std::wstring& name, Separator nameSeparator) : file(name), separator(nameSeparator)
{
    WithName(file, [this] {
        opened = file == L"-" ? ByteFile::StandardInput() : ByteFile::Open(OpenablePath(file));
    });
}

std::optional<std::wstring> NameList::Next()
{
    if (!isEncodingKnown)
        DetectEncoding();
    while (const std::optional<std::string> bytes = NextBytes())
    {
        std::wstring name = isWide ? FromUtf16(*bytes) : TextOfName(*bytes);
        if (separator == Separator::Line && name.ends_with(L'\r'))
            name.pop_back();
        if (!name.empty())
            return name;
    }
    return std::nullopt;
}

size_t NameList::ReadInto(std::span<uint8_t> place)
{
    size_t count = 0;
    WithName(file, [&] { count = opened.Read(place); });
    return count;
}

std::optional<char> NameList::NextByte()
{
    if (position == end)
    {
        position = 0;
        end = ReadInto(buffer);
        if (end == 0)
            return std::nullopt;
    }
    return static_cast<char>(buffer[position++]);
}

void NameList::DetectEncoding()
{
    constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
    constexpr std::string_view utf16Mark = "\xFF\xFE";
    // A pipe may give fewer bytes at first.
    while (end < utf8Mark.size())
    {
        const size_t more = ReadInto(std::span(buffer).subspan(end, utf8Mark.size() - end));
        if (more == 0)
            break;
        end += more;
    }
    const std::string_view start(reinterpret_cast<const char*>(buffer.data()), end);
    if (start.starts_with("\xFE\xFF"))
        throw Failure{file + L": this is big-endian UTF-16; UTF-8 and little-endian UTF-16 are understood"};
    isEncodingKnown = true;
    isWide = start.starts_with(utf16Mark);
    if (isWide)
        position = utf16Mark.size();
    else if (start.starts_with(utf8Mark))
        position = utf8Mark.size();
}

std::optional<std::string> NameList::NextBytes()
{
    std::string bytes;
    for (;;)
    {
        const std::optional<char> byte = NextByte();
        if (!byte)
            return bytes.empty() ? std::nullopt : std::optional(bytes);
        if (!isWide && *byte == static_cast<char>(separator))
            return bytes;
        bytes += *byte;
        if (isWide && bytes.size() % 2 == 0 && bytes[bytes.size() - 2] == static_cast<char>(separator) &&
            bytes.back() == '\0')
        {
            bytes.resize(bytes.size() - 2);
            return bytes;
        }
        if (bytes.size() > longestName)
            throw Failure{file + L": a name is longer than any path"};
    }
}

} // namespace Lumora
