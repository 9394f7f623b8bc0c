#include "lumora/files/NameText.h"

#include "lumora/console/Utf8.h"
#include "lumora/linux/files/FileHandle.h"

#include <cstdint>

namespace Lumora {

namespace {

/// The character at the beginning of the bytes, which are taken. A byte that begins none is kept as half of a
/// surrogate pair, which ToUtf8 turns into that byte again.
wchar_t TakeCharacter(std::string_view& bytes)
{
    const auto first = static_cast<uint8_t>(bytes.front());
    const size_t more = first < 0xC2 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : first < 0xF5 ? 3 : 0;
    uint32_t value = more == 0 ? first : first & (0x3FU >> more);
    bool isValid = first < 0x80 || (more > 0 && bytes.size() > more);
    for (size_t index = 1; isValid && index <= more; ++index)
    {
        const auto next = static_cast<uint8_t>(bytes[index]);
        isValid = (next & 0xC0) == 0x80;
        value = value << 6 | (next & 0x3F);
    }
    const bool isTooLong = (more == 2 && value < 0x800) || (more == 3 && value < 0x10000);
    const bool isNone = (value >= 0xD800 && value <= 0xDFFF) || value > 0x10FFFF;
    if (!isValid || isTooLong || isNone)
    {
        bytes.remove_prefix(1);
        return static_cast<wchar_t>(escapedByte + first);
    }
    bytes.remove_prefix(1 + more);
    return static_cast<wchar_t>(value);
}

} // namespace

std::wstring TextOfName(std::string_view bytes)
{
    std::wstring text;
    while (!bytes.empty())
        text += TakeCharacter(bytes);
    return text;
}

std::string BytesOfName(std::wstring_view name)
{
    return ToUtf8(name);
}

} // namespace Lumora
