#include "lumora/files/NameList.h"

#include "lumora/console/Failure.h"
#include "lumora/files/Paths.h"

#include <cstring>

namespace Lumora {

namespace {

/// No path of Windows has more bytes, in either encoding.
constexpr size_t longestName = size_t{32'768} * 4;

/// Empty if the bytes are not valid in the code page.
std::wstring Decoded(const std::string& bytes, unsigned codePage, DWORD flags)
{
    const auto length = static_cast<int>(bytes.size());
    const int needed = MultiByteToWideChar(codePage, flags, bytes.data(), length, nullptr, 0);
    std::wstring text(static_cast<size_t>(needed), L'\0');
    MultiByteToWideChar(codePage, flags, bytes.data(), length, text.data(), needed);
    return text;
}

std::wstring FromUtf8(const std::string& bytes)
{
    const std::wstring text = Decoded(bytes, CP_UTF8, MB_ERR_INVALID_CHARS);
    return text.empty() ? Decoded(bytes, CP_OEMCP, 0) : text;
}

std::wstring FromUtf16(const std::string& bytes)
{
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    return text;
}

} // namespace

NameList::NameList(const std::wstring& name, Separator nameSeparator) : file(name), separator(nameSeparator)
{
    if (file == L"-")
    {
        handle = GetStdHandle(STD_INPUT_HANDLE);
    }
    else
    {
        handle = CreateFileW(OpenablePath(file).c_str(), GENERIC_READ,
                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                             FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
        if (handle == INVALID_HANDLE_VALUE)
            throw Failure{file + L": " + DescribeError(GetLastError())};
        opened.reset(handle);
    }
}

std::optional<std::wstring> NameList::Next()
{
    if (!isEncodingKnown)
        DetectEncoding();
    while (const std::optional<std::string> bytes = NextBytes())
    {
        std::wstring name = isWide ? FromUtf16(*bytes) : FromUtf8(*bytes);
        if (separator == Separator::Line && name.ends_with(L'\r'))
            name.pop_back();
        if (!name.empty())
            return name;
    }
    return std::nullopt;
}

std::optional<char> NameList::NextByte()
{
    if (position == end)
    {
        DWORD count = 0;
        if (!ReadFile(handle, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) &&
            GetLastError() != ERROR_BROKEN_PIPE)
            throw Failure{file + L": " + DescribeError(GetLastError())};
        position = 0;
        end = count;
        if (count == 0)
            return std::nullopt;
    }
    return buffer[position++];
}

void NameList::DetectEncoding()
{
    constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
    constexpr std::string_view utf16Mark = "\xFF\xFE";
    // A pipe may give fewer bytes at first.
    size_t count = 0;
    while (count < utf8Mark.size())
    {
        DWORD more = 0;
        if (!ReadFile(handle, buffer.data() + count, static_cast<DWORD>(utf8Mark.size() - count), &more,
                      nullptr) ||
            more == 0)
            break;
        count += more;
    }
    end = count;
    const std::string_view start(buffer.data(), count);
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
