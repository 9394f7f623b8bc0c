#include "core/stream/Text.h"

#include <algorithm>
#include <iterator>

namespace Tav::Imaging::RawImage {

std::string_view AsText(std::span<const uint8_t> bytes) noexcept
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::span<const uint8_t> UpToZero(std::span<const uint8_t> bytes) noexcept
{
    return bytes.first(
        static_cast<size_t>(std::find(bytes.begin(), bytes.end(), uint8_t{0}) - bytes.begin()));
}

std::wstring WidenText(std::span<const uint8_t> bytes)
{
    std::wstring text;
    text.reserve(bytes.size());
    std::transform(bytes.begin(), bytes.end(), std::back_inserter(text), [](uint8_t byte) {
        return static_cast<wchar_t>(static_cast<uint16_t>(static_cast<int8_t>(byte)));
    });
    return text;
}

std::wstring WidenText(std::string_view text)
{
    return WidenText({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

std::vector<std::string> SplitString(const std::string& text, char delimiter)
{
    std::vector<std::string> pieces;
    for (size_t begin = 0; begin < text.size();)
    {
        const size_t end = std::min(text.find(delimiter, begin), text.size());
        pieces.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return pieces;
}

} // namespace Tav::Imaging::RawImage
